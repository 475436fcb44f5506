# SPDX-License-Identifier: MIT
# What `cpack` makes: a ZIP for Windows, a TGZ and DEBs elsewhere.
set(docs ${CMAKE_INSTALL_DATADIR}/doc/vlm_internal)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${docs})
install(DIRECTORY docs examples DESTINATION ${docs})

set(CPACK_PACKAGE_NAME vlm-internal)
set(CPACK_PACKAGE_VENDOR "the vlm_internal authors")
# A domain that is nobody's: put an address that is read before giving packages away.
set(CPACK_PACKAGE_CONTACT "the vlm_internal authors <vlm-internal@example.org>")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_STRIP_FILES ON)
  find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
  if(DPKG_SHLIBDEPS)
    list(APPEND CPACK_GENERATOR DEB)
    include(cmake/VlmDebian.cmake)
  endif()
endif()
include(CPack)
