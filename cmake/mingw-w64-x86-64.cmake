# SPDX-License-Identifier: MIT
# Cross-builds for Windows x86-64 with MinGW-w64 and POSIX threads; Wine runs what is built.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
find_program(CMAKE_CROSSCOMPILING_EMULATOR NAMES wine wine64)

# Libraries come from the cross compiler's folders only, packages also from where they are said to
# be.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# {fmt} is used by its headers alone, and those are the same for every target.
find_path(fmt_DIR fmt-config.cmake NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH PATHS
  ${CMAKE_CURRENT_LIST_DIR}/../build/deps/usr/lib/x86_64-linux-gnu/cmake/fmt
  /usr/lib/x86_64-linux-gnu/cmake/fmt)
