# SPDX-License-Identifier: MIT
# The Debian packages, one for each component that is installed.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # would be put before that of each package
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE vlm-internal)
# Older than a revision 1 that Debian itself would make.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0vlm1)
set(debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tool's own library is in the package beside it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# vlm_debian_package(COMPONENT PACKAGE SECTION [DEPENDS text] [SUGGESTS text] [CONTROL file...]
#                    [ARCHITECTURE all] DESCRIPTION text)
#
# Packs COMPONENT as PACKAGE; CONTROL files go beside its control file. What the programs in it are
# linked to is found by dpkg-shlibdeps.
set(CPACK_COMPONENTS_ALL)
macro(vlm_debian_package component package section)
  cmake_parse_arguments(arg "" "DEPENDS;SUGGESTS;ARCHITECTURE;DESCRIPTION" "CONTROL" ${ARGN})
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER CPACK_DEBIAN_${component} prefix)
  set(${prefix}_PACKAGE_NAME ${package})
  set(${prefix}_PACKAGE_SECTION ${section})
  set(${prefix}_PACKAGE_DEPENDS ${arg_DEPENDS})
  set(${prefix}_PACKAGE_SUGGESTS ${arg_SUGGESTS})
  set(${prefix}_PACKAGE_CONTROL_EXTRA ${arg_CONTROL})
  if(arg_ARCHITECTURE)
    set(${prefix}_PACKAGE_ARCHITECTURE ${arg_ARCHITECTURE})
  endif()
  set(${prefix}_DESCRIPTION ${arg_DESCRIPTION})
endmacro()

# Which package a program needs that is linked to the library; dpkg-shlibdeps reads it.
set(library_package libvlm-internal${PROJECT_VERSION_MAJOR})
set(shlibs ${PROJECT_BINARY_DIR}/debian/shlibs)
file(WRITE ${shlibs}
  "libvlm_internal ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})\n")

vlm_debian_package(library ${library_package} libs
  CONTROL ${shlibs} ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
  DESCRIPTION "recording of mono video and amplification of small motion
Records mono video of 8 or 12 bits a pixel to disk, thousands of frames a
second, and amplifies small movements in it so that they can be seen.

This package holds the shared library.")
vlm_debian_package(development libvlm-internal-dev libdevel
  DEPENDS "${library_package} (= ${debian_version})"
  SUGGESTS "g++, cmake, pkgconf"
  DESCRIPTION "recording and amplification of mono video - development files
Records mono video of 8 or 12 bits a pixel to disk, thousands of frames a
second, and amplifies small movements in it so that they can be seen.

This package holds headers, the static library, the reader for recordings,
what CMake and pkg-config need to find them, documentation and examples.")

# The front in C needs nothing of the other library.
set(kpf_library_package libkpf${PROJECT_VERSION_MAJOR})
set(kpf_shlibs ${PROJECT_BINARY_DIR}/debian/kpf/shlibs)
file(WRITE ${kpf_shlibs}
  "libkpf ${PROJECT_VERSION_MAJOR} ${kpf_library_package} (>= ${PROJECT_VERSION})\n")
vlm_debian_package(kpf_library ${kpf_library_package} libs
  CONTROL ${kpf_shlibs} ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
  DESCRIPTION "recordings of mono video, for C and other languages
Writes and reads recordings of mono video of 8 or 12 bits a pixel, and
amplifies small movements in it so that they can be seen.

This package holds the shared library.")
vlm_debian_package(kpf_development libkpf-dev libdevel
  DEPENDS "${kpf_library_package} (= ${debian_version})"
  SUGGESTS "cmake, pkgconf"
  DESCRIPTION "recordings of mono video, for C - development files
Writes and reads recordings of mono video of 8 or 12 bits a pixel, and
amplifies small movements in it so that they can be seen.

This package holds the headers in C, and what CMake and pkg-config need to
find the library.")
if(VLM_PYTHON_DIR)
  vlm_debian_package(kpf_python python3-kpf python
    ARCHITECTURE all
    DEPENDS "${kpf_library_package} (>= ${PROJECT_VERSION}), python3 (>= 3.9), python3-numpy"
    SUGGESTS "python3-dask, python3-distributed, python3-zarr, python3-numcodecs, python3-fsspec"
    CONTROL ${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst
      ${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm
    DESCRIPTION "recordings of mono video as NumPy arrays
Reads and writes recordings of mono video of 8 or 12 bits a pixel as arrays of
NumPy, lazily and without copying where that can be, and amplifies small
movements in them. Hands recordings to dask, and to what reads Zarr, in place.")
endif()
if(TARGET kpf)
  vlm_debian_package(kpf kpf video
    DEPENDS "${library_package} (>= ${PROJECT_VERSION})"
    DESCRIPTION "records, checks, exports and amplifies mono video
Records videos, cameras and pipes as mono video of 8 or 12 bits a pixel,
checks every byte of a recording, turns it back into video or images, and
amplifies small movements so that they can be seen.")
endif()

# What the packages hold beside what is installed; see cmake/debian/finish.cmake.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/finish.cmake)
set(CPACK_VLM_DEBIAN ${PROJECT_BINARY_DIR}/debian)
set(CPACK_VLM_LIBDIR ${CMAKE_INSTALL_LIBDIR})
set(CPACK_VLM_STRIP ${CMAKE_STRIP})
set(CPACK_VLM_SOURCE ${PROJECT_SOURCE_DIR})
execute_process(COMMAND date -u -R -d ${VLM_RELEASE_DATE}
  OUTPUT_VARIABLE release_date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(cmake/debian/changelog.in debian/changelog @ONLY)
