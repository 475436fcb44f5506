# SPDX-License-Identifier: MIT
# The installed package: headers, libraries, find_package(vlm_internal) and pkg-config. What no
# component is named for belongs to `development`; `library` is what a program needs to run.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS  # whatever the umask
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES reader/kpf_reader.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vlm_internal vlm_internal_static kpf_reader EXPORT vlm_internal-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vlm_internal)
install(EXPORT vlm_internal-targets NAMESPACE vlm:: DESTINATION ${package_dir})
configure_package_config_file(cmake/vlm_internal-config.cmake.in vlm_internal-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vlm_internal-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/vlm_internal-config.cmake
  ${PROJECT_BINARY_DIR}/vlm_internal-config-version.cmake
  DESTINATION ${package_dir})

# Relative, so that the package works wherever it is unpacked.
file(RELATIVE_PATH prefix_from_pc
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
# The static library brings along what the shared one is linked to already.
list(TRANSFORM OpenMP_CXX_LIB_NAMES PREPEND -l OUTPUT_VARIABLE private_libs)
list(JOIN private_libs " " private_libs)
foreach(name IN ITEMS vlm_internal kpf_reader)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
