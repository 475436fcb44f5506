# SPDX-License-Identifier: MIT
# The package for Python, over the installed libkpf. Nothing is compiled: it is laid where the
# system's Python looks, with what tells other programs of it.
find_program(VLM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(VLM_PYTHON python3)
if(WIN32 OR NOT VLM_PYTHON)
  return()
endif()

set(kpf_metadata ${PROJECT_BINARY_DIR}/python/kpf-${PROJECT_VERSION}.dist-info)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/python/pyproject.toml)
execute_process(
  COMMAND ${VLM_PYTHON} ${PROJECT_SOURCE_DIR}/python/make_metadata.py ${kpf_metadata}
  OUTPUT_VARIABLE python_version OUTPUT_STRIP_TRAILING_WHITESPACE
  RESULT_VARIABLE failed ERROR_QUIET)
if(failed)
  vlm_leave_out("the package for Python, which asks for Python 3.11" python3)
  return()
endif()

# Debian's Python looks into dist-packages, others into site-packages.
set(packages site-packages)
if(EXISTS /etc/debian_version)
  set(packages dist-packages)
endif()
set(VLM_PYTHON_DIR lib/python${python_version}/${packages} CACHE STRING
  "Where the package for Python goes, below the prefix")
install(DIRECTORY python/kpf DESTINATION ${VLM_PYTHON_DIR} COMPONENT kpf_python
  FILES_MATCHING PATTERN "*.py" PATTERN "*.yaml" PATTERN "py.typed" PATTERN __pycache__ EXCLUDE)
install(DIRECTORY ${kpf_metadata} DESTINATION ${VLM_PYTHON_DIR} COMPONENT kpf_python)

# A wheel with the library inside, for systems like this one:
# `cmake --build FOLDER --target kpf_wheel`.
add_custom_target(kpf_wheel VERBATIM DEPENDS libkpf
  COMMAND ${CMAKE_COMMAND} -D PYTHON=${VLM_PYTHON} -D SOURCE=${PROJECT_SOURCE_DIR}/python
    -D LIBRARY=$<TARGET_FILE:libkpf> -D NAME=$<TARGET_SONAME_FILE_NAME:libkpf>
    -D FOLDER=${PROJECT_BINARY_DIR}/wheel -P ${PROJECT_SOURCE_DIR}/cmake/kpf_wheel.cmake)
