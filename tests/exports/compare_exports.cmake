# Fails when the library exports more or less than the list says.
if(WINDOWS)
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table[^\n]*\n(\t\\[[^\n]*\n)+" table "${table}")
  string(REGEX MATCHALL "\t\\[[^\n]*" rows "${table}")
else()
  execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
    OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[0-9a-f]+ [B-Zb-z] [^\n]+" rows "${table}")  # A is a version's own name
endif()
list(TRANSFORM rows REPLACE "^.* " "" OUTPUT_VARIABLE exported)
list(TRANSFORM exported REPLACE "@.*$" "")  # the version
file(STRINGS ${LIST} expected REGEX "^[^#]")
list(SORT exported)
list(SORT expected)
if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "exported: ${exported}\nlisted:   ${expected}")
endif()
list(LENGTH exported count)
message(STATUS "${count} symbols exported, as listed")
