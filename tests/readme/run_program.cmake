# Runs PROGRAM in FOLDER. MODE refused: a folder lies where its first data file should.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
if(MODE STREQUAL "refused")
  file(MAKE_DIRECTORY ${FOLDER}/clip/clip_0001.div)
endif()
execute_process(COMMAND ${PROGRAM} WORKING_DIRECTORY ${FOLDER}
  RESULT_VARIABLE status OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/complaints.txt)
file(READ ${FOLDER}/said.txt said)

if(MODE STREQUAL "records")
  file(SIZE ${FOLDER}/clip/clip_0001.div size)
  if(NOT status EQUAL 0 OR NOT said STREQUAL "" OR NOT size EQUAL 92163200)  # 200 x (16 + 460800)
    message(FATAL_ERROR "${size} bytes, exit status ${status}: ${said}")
  endif()
elseif(NOT status EQUAL 1 OR NOT said MATCHES "queueFrame: the divFile is not open"
       OR NOT EXISTS ${FOLDER}/clip.kpf.incomplete.txt)
  message(FATAL_ERROR "exit status ${status}: ${said}")
endif()
file(REMOVE_RECURSE ${FOLDER}/clip)
