# SPDX-License-Identifier: MIT
# The target `uninstall`: removes what the last `cmake --install` of this folder laid down. A list
# of our own, since packing would overwrite CMake's.
set(installed ${PROJECT_BINARY_DIR}/installed.txt)
install(CODE "
  if(NOT \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\" MATCHES /_CPack_Packages/)
    list(TRANSFORM CMAKE_INSTALL_MANIFEST_FILES PREPEND \"\$ENV{DESTDIR}\" OUTPUT_VARIABLE files)
    list(JOIN files \"\\n\" files)
    file(WRITE ${installed} \"\${files}\\n\")
  endif()" ALL_COMPONENTS)
add_custom_target(uninstall VERBATIM COMMAND ${CMAKE_COMMAND}
  -D INSTALLED=${installed} -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
