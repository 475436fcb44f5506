# Builds the caller's project against an installed package and runs it.
#
# -D PREFIX=     where the package lies
# -D BUILD=      a build folder to take the package from: installed in PREFIX or, with
# -D GENERATOR=  of cpack, packed and unpacked there
# -D FOLDER=     where to build and record
# -D SOURCE=     this folder
# -D CONFIGURE=  further arguments for CMake, as a list
# -D WITH_TOOL=  whether kpf is in a package for Windows
# -D EMULATOR=   what runs a program; empty natively
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER}/out)

# Output goes to a file: a service that Wine starts would hold a pipe open long after the program.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status
    OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/said.txt)
  if(NOT status EQUAL 0)
    file(READ ${FOLDER}/said.txt said)
    message(FATAL_ERROR "${ARGN}\nended with ${status}:\n${said}")
  endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX})
if(NOT GENERATOR)
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX})
else()
  set(packages ${FOLDER}/packages)
  run(${CPACK} -G ${GENERATOR} --config ${BUILD}/CPackConfig.cmake -B ${packages})
  file(GLOB package ${packages}/*.zip ${packages}/*.tar.gz ${packages}/*.deb)
  file(MAKE_DIRECTORY ${FOLDER}/unpacked)
  set(docs share/doc/vlm_internal)
  set(expected LICENSE docs/licences.md examples/record_frames.cpp)
  if(GENERATOR STREQUAL "DEB")
    foreach(one IN LISTS package)
      run(dpkg-deb -x ${one} ${FOLDER}/unpacked)
    endforeach()
    set(PREFIX ${FOLDER}/unpacked/usr)
    set(docs share/doc/libvlm-internal-dev)
    list(REMOVE_ITEM expected LICENSE)  # named copyright there
  else()
    file(ARCHIVE_EXTRACT INPUT ${package} DESTINATION ${FOLDER}/unpacked)
    file(GLOB PREFIX ${FOLDER}/unpacked/*)
  endif()
  if(WINDOWS)  # what the runtimes beside the DLL ask for
    list(APPEND expected licences/GPL-3 licences/gcc-runtimes.txt licences/winpthreads.txt)
    if(WITH_TOOL)
      run(${EMULATOR} ${PREFIX}/bin/kpf.exe --version)
    endif()
  endif()
  foreach(name IN LISTS expected)
    if(NOT EXISTS ${PREFIX}/${docs}/${name})
      message(FATAL_ERROR "${name} is not in ${package}")
    endif()
  endforeach()
endif()
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER}/build -D CMAKE_PREFIX_PATH=${PREFIX} ${CONFIGURE})
run(${CMAKE_COMMAND} --build ${FOLDER}/build)
if(WINDOWS)  # where DLLs are looked for beside the program
  file(GLOB dlls ${PREFIX}/bin/*.dll)
  file(COPY ${dlls} DESTINATION ${FOLDER}/build)
  set(suffix .exe)
endif()
if(EXISTS ${PREFIX}/lib/kpf.lib)
  run(${CMAKE_COMMAND} -S ${SOURCE}/msvc -B ${FOLDER}/msvc -D CMAKE_PREFIX_PATH=${PREFIX})
endif()

set(closing "closeStream: KPF Packed streamStatus is not marked complete.")
foreach(program IN ITEMS caller caller_static)
  file(REMOVE_RECURSE "${FOLDER}/out/with spaces")
  file(MAKE_DIRECTORY "${FOLDER}/out/with spaces")
  set(out "${FOLDER}/out/with spaces")
  run(${EMULATOR} ${FOLDER}/build/${program}${suffix} ${out})
  run(${EMULATOR} ${FOLDER}/build/reader${suffix} ${out}/clip.kpf)
  file(READ ${out}/log.txt logged)
  string(FIND "${logged}" "${closing}" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "${program} left no closing line: ${logged}")
  endif()
  file(READ ${out}/open.kpf.incomplete.txt status HEX)
  string(FIND "${status}" "0d0a" line_end)
  if(WINDOWS AND line_end EQUAL -1 OR NOT WINDOWS AND NOT line_end EQUAL -1)
    message(FATAL_ERROR "the status file has the wrong line ends: ${status}")
  endif()
endforeach()

run(${EMULATOR} ${FOLDER}/build/both${suffix} ${FOLDER}/out)
run(${EMULATOR} ${FOLDER}/build/c_front${suffix} ${FOLDER}/out/c_front.kpf)

# compile(PROGRAM SOURCE MODULE OPTION...): as a caller does who has pkg-config alone.
function(compile program source module)
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs ${module}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(compiler ${COMPILER} -std=c++20)
  if(source MATCHES "\\.c$")
    set(compiler ${C_COMPILER} -std=c11 -pedantic)
  endif()
  run(${compiler} ${SOURCE}/${source} ${flags} ${ARGN} -o ${FOLDER}/${program})
endfunction()

if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
  compile(caller_pkg_config caller.cpp vlm_internal -Wl,-rpath,${PREFIX}/${LIBDIR})
  compile(reader_pkg_config reader.cpp kpf_reader)
  compile(c_front_pkg_config c_front.c kpf -Wl,-rpath,${PREFIX}/${LIBDIR})
  run(${FOLDER}/c_front_pkg_config ${FOLDER}/out/c_front_pkg_config.kpf)
  list(APPEND PKG_CONFIG --static)
  compile(caller_pkg_config_static caller.cpp vlm_internal -static)
  foreach(program IN ITEMS caller_pkg_config caller_pkg_config_static)
    set(out ${FOLDER}/out/${program})
    file(MAKE_DIRECTORY ${out})
    run(${FOLDER}/${program} ${out})
    run(${FOLDER}/reader_pkg_config ${out}/clip.kpf)
  endforeach()
endif()
