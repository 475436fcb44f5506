# SPDX-License-Identifier: MIT
# Libraries that are headers alone, for cross-builds. Debian keeps them between those of its own C
# library, which another system's compiler must not see: they are looked at through a folder of
# links.
set(header_folder ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${header_folder})

# vlm_header_library(TARGET FOLDER): TARGET is made where /usr/include has FOLDER.
function(vlm_header_library target folder)
  if(TARGET ${target} OR NOT EXISTS /usr/include/${folder})
    return()
  endif()
  file(CREATE_LINK /usr/include/${folder} ${header_folder}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${header_folder})
endfunction()
