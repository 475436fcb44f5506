# SPDX-License-Identifier: MIT
# libkpf: the front in C, with a copy of the rooms that it stands on inside. It exports what
# kpf_exports.txt lists, and nothing of theirs.
file(STRINGS cmake/kpf_exports.txt kpf_exports REGEX "^[^#]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/cmake/kpf_exports.txt)

# The target is not called kpf: that is the tool.
add_library(libkpf SHARED
  capi/amplifier.cpp capi/calls.cpp capi/images.cpp capi/log.cpp capi/names.cpp capi/reader.cpp
  capi/recorder.cpp capi/replacing.cpp capi/structs.cpp capi/viewer.cpp capi/writer.cpp
  capi/durable_$<IF:$<BOOL:${WIN32}>,windows,posix>.cpp)
add_library(kpf::kpf ALIAS libkpf)
target_compile_definitions(libkpf PRIVATE
  KPF_BUILD VLM_INTERNAL_STATIC KPF_VERSION_TEXT="${PROJECT_VERSION}")
target_include_directories(libkpf INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/capi> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(libkpf PRIVATE
  $<BUILD_INTERFACE:vlm_flags> $<BUILD_INTERFACE:kpf_format> $<BUILD_INTERFACE:kpf_reader>)
target_compile_options(libkpf PRIVATE ${OpenMP_CXX_FLAGS})
set_target_properties(libkpf PROPERTIES
  CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
  OUTPUT_NAME kpf EXPORT_NAME kpf
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

if(WIN32)
  include(cmake/KpfWindows.cmake)
  return()
endif()

# Objects are compiled once for both libraries: the version script hides what is theirs.
target_sources(libkpf PRIVATE $<FILTER:$<TARGET_OBJECTS:vlm_objects>,EXCLUDE,/interface/>)
target_link_libraries(libkpf PRIVATE OpenMP::OpenMP_CXX Threads::Threads)
list(JOIN kpf_exports "; " exported)
set(kpf_version_script ${PROJECT_BINARY_DIR}/kpf.map)
file(CONFIGURE OUTPUT ${kpf_version_script}
  CONTENT "KPF_1.0 { global: @exported@; local: *; };\n" @ONLY)
# Never unloaded: threads of the OpenMP team outlive every call.
target_link_options(libkpf PRIVATE LINKER:--version-script=${kpf_version_script} LINKER:-z,nodelete)
set_target_properties(libkpf PROPERTIES LINK_DEPENDS ${kpf_version_script})
if(NOT VLM_SANITIZE)
  target_link_options(libkpf PRIVATE LINKER:--no-undefined)
endif()
