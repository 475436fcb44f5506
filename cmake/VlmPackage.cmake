# SPDX-License-Identifier: MIT
# What `cpack` makes: a ZIP for Windows, a TGZ and a DEB elsewhere.
set(docs ${CMAKE_INSTALL_DATADIR}/doc/vlm_internal)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${docs})
install(DIRECTORY docs examples DESTINATION ${docs})

set(CPACK_PACKAGE_NAME vlm-internal)
set(CPACK_PACKAGE_VENDOR "the vlm_internal developers")
set(CPACK_PACKAGE_CONTACT "the vlm_internal developers <vlm-internal@localhost>")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS g++)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # The tool's own library is in the package beside it.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
endif()
include(CPack)
