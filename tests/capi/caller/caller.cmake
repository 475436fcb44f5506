# The caller in C, compiled by another compiler than the library where that can be had.
set(source ${CMAKE_CURRENT_LIST_DIR}/caller.c)
if(WIN32)
  find_program(VLM_CLANG NAMES clang clang-14 REQUIRED)
  find_program(VLM_LLD_LINK NAMES lld-link lld-link-14 REQUIRED)
  set(here ${CMAKE_CURRENT_BINARY_DIR})
  set(caller ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/kpf_caller_msvc.exe)
  file(WRITE ${here}/kernel32.def "LIBRARY KERNEL32.dll\nEXPORTS\n  ExitProcess\n")
  add_custom_command(OUTPUT ${caller} DEPENDS ${source} kpf_lib libkpf ${PROJECT_BINARY_DIR}/kpf.lib
    COMMAND ${VLM_CLANG} --target=x86_64-pc-windows-msvc -ffreestanding -std=c11 -O2
      -Wall -Wextra -pedantic -Werror -I ${PROJECT_SOURCE_DIR}/capi -c ${source} -o caller.obj
    COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -d kernel32.def -l kernel32.lib
    COMMAND ${VLM_LLD_LINK} caller.obj kernel32.lib ${PROJECT_BINARY_DIR}/kpf.lib /out:${caller}
      /entry:start /subsystem:console /nodefaultlib
    WORKING_DIRECTORY ${here} VERBATIM)
  add_custom_target(kpf_caller ALL DEPENDS ${caller})
else()
  add_executable(kpf_caller ${source})
  set_target_properties(kpf_caller PROPERTIES C_STANDARD 11 C_EXTENSIONS OFF)
  target_compile_options(kpf_caller PRIVATE -Wall -Wextra -pedantic -Werror)
  target_link_libraries(kpf_caller PRIVATE kpf::kpf)
  set(caller $<TARGET_FILE:kpf_caller>)
endif()
add_test(NAME capi_caller COMMAND ${CMAKE_COMMAND}
  -D "PROGRAM=${CMAKE_CROSSCOMPILING_EMULATOR};${caller}"
  -D FOLDER=${CMAKE_CURRENT_BINARY_DIR}/caller_out
  -P ${CMAKE_CURRENT_LIST_DIR}/check_caller.cmake)
set_tests_properties(capi_caller PROPERTIES
  LABELS capi ENVIRONMENT "OMP_WAIT_POLICY=passive")

# The DLL needs no other file: nothing of the compiler's, and of the system's only these two.
if(WIN32)
  add_test(NAME capi_dll_imports COMMAND ${CMAKE_COMMAND}
    -D OBJDUMP=${CMAKE_OBJDUMP} -D PROGRAM=$<TARGET_FILE:libkpf>
    -P ${CMAKE_CURRENT_LIST_DIR}/check_imports.cmake)
  set_tests_properties(capi_dll_imports PROPERTIES LABELS capi)
endif()
