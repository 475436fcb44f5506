# SPDX-License-Identifier: MIT
# The installed package: headers, libraries, find_package(vlm_internal) and pkg-config.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES reader/kpf_reader.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vlm_internal vlm_internal_static kpf_reader EXPORT vlm_internal-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
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
configure_file(cmake/vlm_internal.pc.in vlm_internal.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vlm_internal.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
