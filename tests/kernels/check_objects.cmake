# Fails when an object for wide registers could harm the rest of the program:
# - a weak symbol may be chosen by the linker for everyone, and an old processor then runs it;
# - on Windows, where the stack is aligned to 16 bytes, an aligned move of 32 or 64 bytes may fault.
if(NOT OBJECTS)
  message(FATAL_ERROR "there are no such objects")
endif()
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} ${object} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]* [VWuvw] [^\n]*" weak "${symbols}")
  if(weak)
    message(FATAL_ERROR "${object} defines weak symbols: ${weak}")
  endif()
  if(WINDOWS)
    execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn ${object}
      OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL
      "vmov(dqa|dqa32|dqa64|aps|apd|ntdq|ntps|ntpd) [^\n]*[(][^\n]*" moves "${code}")
    list(FILTER moves INCLUDE REGEX "%[yz]mm")
    if(moves)
      message(FATAL_ERROR "${object} moves aligned: ${moves}")
    endif()
  endif()
endforeach()
