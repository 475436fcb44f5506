# One version: the header's text, the build's number, the newest release of the changelog, the tool.

function(expect_equal what value expected)
  if(NOT value STREQUAL expected)
    message(FATAL_ERROR "${what} is \"${value}\", not \"${expected}\"")
  endif()
endfunction()

file(WRITE ${FOLDER}/version.h "#include <vlm_version.h>\nVLM_VERSION_STRING\n")
execute_process(COMMAND ${COMPILER} -E -P -I ${INCLUDE} ${FOLDER}/version.h
  OUTPUT_VARIABLE text OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[\"\n ]" "" text "${text}")
expect_equal("VLM_VERSION_STRING" "${text}" "${VERSION}")

file(STRINGS ${CHANGELOG} releases REGEX "^## [0-9]")
list(GET releases 0 newest)
string(REGEX REPLACE "^## ([0-9.]+) - [0-9]+-[0-9]+-[0-9]+$" "\\1" newest "${newest}")
expect_equal("the newest release in the changelog" "${newest}" "${VERSION}")

if(KPF)
  execute_process(COMMAND ${EMULATOR} ${KPF} --version
    OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
  expect_equal("kpf --version" "${said}" "kpf ${VERSION}\n")
endif()
