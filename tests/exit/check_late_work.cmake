# Runs PROGRAM in FOLDER and checks that it ended well, and that the stream which it left open was
# closed behind its last frame. The program itself checks every frame.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${PROGRAM} ./rec.kpf ${MODE} WORKING_DIRECTORY ${FOLDER}
  RESULT_VARIABLE status OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/complaints.txt)
file(READ ${FOLDER}/complaints.txt complaints)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "The exit status is ${status}.\n${complaints}")
endif()

file(READ ${FOLDER}/said.txt said)
string(REPLACE "\r\n" "\n" said "${said}")
string(CONCAT closing "closeStream: KPF Packed streamStatus is not marked complete.  Writing "
  "./rec.kpf.incomplete.txt to document incomplete status.\n")
if(MODE STREQUAL "closed")
  string(APPEND closing "vxAddTiffImageData: streamHandle (1) is invalid!\n")
endif()
if(NOT said STREQUAL closing OR NOT EXISTS ${FOLDER}/rec.kpf.incomplete.txt)
  message(FATAL_ERROR "Not the words of a stream that closes itself once: ${said}")
endif()

math(EXPR record_size "16 + 2048 * 2048 * 3 / 2")
file(SIZE ${FOLDER}/rec/rec_0001.div size)
math(EXPR rest "${size} % ${record_size}")
math(EXPR records "${size} / ${record_size}")
if(NOT rest EQUAL 0 OR (MODE STREQUAL "static" AND NOT records EQUAL 4))
  message(FATAL_ERROR "${size} bytes are ${records} records and ${rest} bytes.")
endif()
file(REMOVE_RECURSE ${FOLDER}/rec)
