# The caller's project against what `cmake --install` lays down, and against each package.
find_program(PKG_CONFIG_PROGRAM pkg-config)
find_program(DPKG_DEB dpkg-deb)

set(with_this_compiler -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
  -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER} -DCMAKE_C_COMPILER=${CMAKE_C_COMPILER})

# vlm_add_package_test(NAME LABEL [GENERATOR of cpack])
function(vlm_add_package_test name label)
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND}
    -D BUILD=${PROJECT_BINARY_DIR} -D GENERATOR=${ARGN} -D CPACK=${CMAKE_CPACK_COMMAND}
    -D PREFIX=${PROJECT_BINARY_DIR}/consumer/${name}/prefix
    -D FOLDER=${PROJECT_BINARY_DIR}/consumer/${name}
    -D SOURCE=${CMAKE_CURRENT_FUNCTION_LIST_DIR}
    -D "CONFIGURE=${with_this_compiler}"
    -D "EMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}"
    -D WINDOWS=$<BOOL:${WIN32}> -D WITH_TOOL=$<TARGET_EXISTS:kpf>
    -D PKG_CONFIG=$<$<NOT:$<BOOL:${WIN32}>>:${PKG_CONFIG_PROGRAM}>
    -D LIBDIR=${CMAKE_INSTALL_LIBDIR} -D COMPILER=${CMAKE_CXX_COMPILER}
    -D C_COMPILER=${CMAKE_C_COMPILER}
    -P ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/check_package.cmake)
  set_tests_properties(${name} PROPERTIES
    LABELS ${label} ENVIRONMENT "OMP_WAIT_POLICY=passive")
endfunction()

vlm_add_package_test(consumer_install consumer)
set_tests_properties(consumer_install PROPERTIES RESOURCE_LOCK installed_list)
if(WIN32)
  vlm_add_package_test(package_zip package ZIP)
else()
  vlm_add_package_test(package_tgz package TGZ)
  if(DPKG_DEB)
    vlm_add_package_test(package_deb package DEB)
    set_tests_properties(package_deb PROPERTIES FIXTURES_SETUP debian_packages)
  endif()
endif()
