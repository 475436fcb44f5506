# SPDX-License-Identifier: MIT
# The library, compiled once and offered twice: shared, exporting what exports.txt lists, and
# static, with every symbol in reach of the tests.
add_library(vlm_objects OBJECT)
target_compile_definitions(vlm_objects PRIVATE VLM_INTERNAL_BUILD)
set_target_properties(vlm_objects PROPERTIES
  CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
target_link_libraries(vlm_objects PRIVATE
  vlm_flags kpf_format OpenMP::OpenMP_CXX Threads::Threads)

add_library(vlm_internal SHARED)
add_library(vlm_internal_static STATIC)
add_library(vlm::vlm_internal ALIAS vlm_internal)
add_library(vlm::vlm_internal_static ALIAS vlm_internal_static)
target_compile_definitions(vlm_internal_static INTERFACE VLM_INTERNAL_STATIC)
target_link_libraries(vlm_internal_static PUBLIC OpenMP::OpenMP_CXX Threads::Threads)
foreach(library IN ITEMS vlm_internal vlm_internal_static)
  target_link_libraries(${library} PRIVATE
    $<BUILD_INTERFACE:vlm_objects> $<BUILD_INTERFACE:vlm_flags> OpenMP::OpenMP_CXX Threads::Threads)
  target_compile_features(${library} PUBLIC cxx_std_20)
  target_include_directories(${library} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
set_target_properties(vlm_internal PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

# Both have one name, as linkers and `pkg-config --static` expect it.
set_target_properties(vlm_internal_static PROPERTIES OUTPUT_NAME vlm_internal)

if(WIN32)
  target_sources(vlm_internal PRIVATE ${PROJECT_BINARY_DIR}/version.rc)
  # Only what is marked as exported, not the C++ library's templates beside it.
  target_link_options(vlm_internal PRIVATE LINKER:--exclude-all-symbols)
endif()

# The version script keeps the C++ library's own templates out of the table of exports.
if(NOT WIN32)
  file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/exports.txt exports REGEX "^[^#]")
  list(JOIN exports "; " exported)
  set(version_script ${PROJECT_BINARY_DIR}/vlm_internal.map)
  file(CONFIGURE OUTPUT ${version_script} CONTENT "{ global: @exported@; local: *; };\n" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/cmake/exports.txt)
  target_link_options(vlm_internal PRIVATE LINKER:--version-script=${version_script})
  set_target_properties(vlm_internal PROPERTIES LINK_DEPENDS ${version_script})
  if(NOT VLM_SANITIZE)
    target_link_options(vlm_internal PRIVATE LINKER:--no-undefined)
  endif()
endif()
