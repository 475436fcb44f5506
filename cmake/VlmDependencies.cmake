# SPDX-License-Identifier: MIT
# What building needs. Everything that is missing is named at once, with the command that gets it.
find_package(fmt 10 QUIET CONFIG)
find_package(OpenMP QUIET COMPONENTS CXX)
set(THREADS_PREFER_PTHREAD_FLAG OFF)
find_package(Threads QUIET)
if(VLM_BUILD_TESTS)
  find_package(GTest QUIET CONFIG)
endif()

set(missing)
if(NOT fmt_FOUND)
  string(APPEND missing
    "  {fmt} 10 or later (Debian 12 has 9; scripts/setup puts 10 into build/deps)\n")
  if(fmt_CONSIDERED_VERSIONS)
    string(APPEND missing "    found and too old: {fmt} ${fmt_CONSIDERED_VERSIONS}\n")
  endif()
endif()
if(NOT OpenMP_CXX_FOUND)
  string(APPEND missing "  OpenMP of the C++ compiler (clang: libomp-dev)\n")
endif()
if(NOT Threads_FOUND)
  string(APPEND missing "  POSIX threads (libc6-dev)\n")
endif()
if(VLM_BUILD_TESTS AND NOT GTest_FOUND AND NOT EXISTS /usr/src/googletest/CMakeLists.txt)
  string(APPEND missing
    "  GoogleTest (libgtest-dev libgmock-dev googletest; or -D VLM_BUILD_TESTS=OFF)\n")
endif()
if(missing)
  message(FATAL_ERROR "Missing:\n${missing}To have it:\n"
    "  scripts/setup test    gets everything on Debian and its kin, as root or with sudo.\n"
    "An installed {fmt} 10 or later is taken: -D CMAKE_PREFIX_PATH=FOLDER where CMake does not "
    "look by itself. README.md lists what building needs.")
endif()

# vlm_leave_out(WHAT PACKAGE...): notes that WHAT is not built for want of Debian's PACKAGEs. The
# end of the configuration says so, where it is seen.
function(vlm_leave_out what)
  list(JOIN ARGN " " packages)
  set_property(GLOBAL APPEND_STRING PROPERTY vlm_left_out
    "Left out: ${what}. To have it: apt-get install ${packages}\n")
endfunction()

function(vlm_say_what_is_left_out)
  get_property(left_out GLOBAL PROPERTY vlm_left_out)
  if(left_out)
    string(STRIP "${left_out}" left_out)
    message(NOTICE "\n${left_out}\n")
  endif()
endfunction()
