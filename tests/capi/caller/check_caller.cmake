# The caller's recording has the same bytes wherever it was made: those written down here.
# -D "PROGRAM=[emulator;]program" -D FOLDER=
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${PROGRAM} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE status
  OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/said.txt)
file(SIZE ${FOLDER}/said.txt said)
if(NOT status EQUAL 0 OR NOT said EQUAL 0)
  file(READ ${FOLDER}/said.txt text)
  message(FATAL_ERROR "the caller failed at step ${status} and said: ${text}")
endif()

set(base "Zürich-дом-屋-🏠")
set(pixels ab3c1200f1ff80f07f0100f0)
set(expected
  00000000e80300000000000000000000${pixels}
  01000000e80300000000000048e80100${pixels}
  00000000000000000000000000000000000000000000000000000000
  03000000ffffffffffffffff05000000${pixels})
list(JOIN expected "" expected)
file(READ "${FOLDER}/${base}/${base}_0001.div" data HEX)
if(NOT data STREQUAL expected)
  message(FATAL_ERROR "the data file reads\n${data}\nand not\n${expected}")
endif()

# Of the header what was chosen, the count that closing set, and the rest by its sum without the
# random identifiers at 1698 to 1729.
file(READ "${FOLDER}/${base}.kpf" header HEX)
string(LENGTH "${header}" digits)
string(SUBSTRING "${header}" 936 8 count)
string(SUBSTRING "${header}" 0 3396 before)
string(SUBSTRING "${header}" 3460 -1 behind)
string(SHA256 sum "${before}${behind}")
set(expected ac4760ed1d85ae270e790565b46bd95930152d41c7c89f0b4c944b90efe123b8)
if(NOT digits EQUAL 5996 OR NOT count STREQUAL "04000000" OR NOT sum STREQUAL expected)
  message(FATAL_ERROR "the header has ${digits} digits, the count ${count} and the sum ${sum}")
endif()
if(EXISTS "${FOLDER}/${base}.kpf.incomplete.txt" OR NOT EXISTS ${FOLDER}/short.kpf.incomplete.txt)
  message(FATAL_ERROR "a status file is there that must not be, or missing")
endif()
