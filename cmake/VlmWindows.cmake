# SPDX-License-Identifier: MIT
# What a DLL needs around it: the runtimes that it shares with its callers, and its version.

# Strings, exceptions and memory cross the boundary, so library and caller must use one copy of
# each runtime: the compiler's DLLs travel with ours.
set(vlm_runtimes)
foreach(name IN ITEMS libstdc++-6 libgcc_s_seh-1 libgomp-1 libwinpthread-1)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll
    OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${runtime}")  # the compiler gives the bare name of what it does not find
    message(FATAL_ERROR "The compiler has no ${name}.dll")
  endif()
  list(APPEND vlm_runtimes ${runtime})
endforeach()

# Windows looks for DLLs beside the program, so all programs of the build lie beside ours.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
file(COPY ${vlm_runtimes} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
install(FILES ${vlm_runtimes} DESTINATION ${CMAKE_INSTALL_BINDIR})

# Their licences ask that their texts travel too. They lie where the compiler's packages put them.
foreach(text IN ITEMS
    GPL-3=/usr/share/common-licenses/GPL-3
    gcc-runtimes.txt=/usr/share/doc/gcc-mingw-w64-base/copyright
    winpthreads.txt=/usr/share/doc/mingw-w64-x86-64-dev/copyright)
  string(REPLACE "=" ";" text ${text})
  list(GET text 0 name)
  list(GET text 1 source)
  if(EXISTS ${source})
    install(FILES ${source} RENAME ${name}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vlm_internal/licences)
  else()
    message(WARNING "No ${source}: put ${name} beside the DLLs before passing them on")
  endif()
endforeach()

enable_language(RC)
configure_file(cmake/version.rc.in version.rc @ONLY)
