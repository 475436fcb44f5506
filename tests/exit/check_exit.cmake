# Runs PROGRAM in FOLDER and checks its exit status, its words, its log and its files.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
# Output goes to files: a service that Wine starts would hold a pipe open long after the program.
execute_process(COMMAND ${PROGRAM} ./rec.kpf log.txt ${MODE} WORKING_DIRECTORY ${FOLDER}
  RESULT_VARIABLE status OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/complaints.txt)
file(READ ${FOLDER}/said.txt said)
file(READ ${FOLDER}/complaints.txt complaints)

function(expect what actual expected)
  if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "${what} is\n${actual}\ninstead of\n${expected}\n${complaints}")
  endif()
endfunction()

string(CONCAT closing "closeStream: KPF Packed streamStatus is not marked complete.  Writing "
  "./rec.kpf.incomplete.txt to document incomplete status.")
string(REPLACE "\r\n" "\n" said "${said}")  # standard output is a text stream
file(READ ${FOLDER}/log.txt logged)
if(MODE STREQUAL "static")
  # Before the closing line or behind it, but not lost.
  foreach(text IN ITEMS said logged)
    string(FIND "${${text}}" "late words\n" late)
    if(late EQUAL -1 AND text STREQUAL "said")
      message(FATAL_ERROR "the application's last words are lost: ${said}")
    endif()
    string(REPLACE "late words\n" "" ${text} "${${text}}")
  endforeach()
endif()
expect("the exit status" "${status}" 0)
expect("standard output" "${said}" "${closing}\n")
expect("the log file" "${logged}" "${closing}\n")

file(READ ${FOLDER}/rec.kpf.incomplete.txt incomplete HEX)
set(text "Packed stream is incomplete and was not fully processed.\n")
string(APPEND text "Please review log data for possible error conditions.\nStatus:\n")
if(WINDOWS)
  string(REPLACE "\n" "\r\n" text "${text}")
endif()
string(HEX "${text}" text)
expect("the status file" "${incomplete}" "${text}")

file(READ ${FOLDER}/rec/rec_0001.div record HEX)
expect("the record" "${record}" "0000000000000000000000000000000001020304")
