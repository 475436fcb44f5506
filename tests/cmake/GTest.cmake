# GoogleTest: the distribution's libraries, or its sources where there are none for the target.
find_package(GTest CONFIG QUIET)
if(NOT GTest_FOUND)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
