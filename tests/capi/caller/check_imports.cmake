# -D OBJDUMP= -D PROGRAM=  which must need nothing but what every Windows has
execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n\r]+" imported "${table}")
list(TRANSFORM imported REPLACE "DLL Name: " "")
list(TRANSFORM imported TOLOWER)
list(SORT imported)
if(NOT imported STREQUAL "kernel32.dll;msvcrt.dll")
  message(FATAL_ERROR "${PROGRAM} needs ${imported}")
endif()
