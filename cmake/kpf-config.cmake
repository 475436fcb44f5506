# SPDX-License-Identifier: MIT
include(${CMAKE_CURRENT_LIST_DIR}/kpf-targets.cmake)

# On Windows Microsoft's linker has an import library of its own beside MinGW's.
set(kpf_import_library ${CMAKE_CURRENT_LIST_DIR}/../../kpf.lib)
if(MSVC AND EXISTS ${kpf_import_library})
  get_target_property(kpf_configurations kpf::kpf IMPORTED_CONFIGURATIONS)
  foreach(kpf_configuration IN LISTS kpf_configurations)
    set_target_properties(kpf::kpf PROPERTIES
      IMPORTED_IMPLIB_${kpf_configuration} ${kpf_import_library})
  endforeach()
endif()
