# SPDX-License-Identifier: MIT
# The installed package of libkpf: headers, library, find_package(kpf) and pkg-config. In components
# of its own: who calls it needs nothing of the other library.
include(CMakePackageConfigHelpers)

install(FILES capi/kpf.h capi/kpf_types.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT kpf_development)
install(TARGETS libkpf EXPORT kpf-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kpf_library
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kpf_library
    NAMELINK_COMPONENT kpf_development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kpf_development)
if(WIN32)
  install(FILES ${kpf_lib} ${kpf_def}
    DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kpf_development)
endif()

set(kpf_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kpf)
install(EXPORT kpf-targets NAMESPACE kpf::
  DESTINATION ${kpf_package_dir} COMPONENT kpf_development)
write_basic_package_version_file(kpf-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/kpf-config.cmake ${PROJECT_BINARY_DIR}/kpf-config-version.cmake
  DESTINATION ${kpf_package_dir} COMPONENT kpf_development)

# Relative, so that the package works wherever it is unpacked.
file(RELATIVE_PATH prefix_from_pc
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/kpf.pc.in kpf.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kpf.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT kpf_development)
