# What record makes, read prints; nothing is overwritten. -D RECORD= READ= EMULATOR= FOLDER=
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

# Output goes to a file: a service that Wine starts would hold a pipe open long after the program.
function(run expected_status expected_text)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE status
    OUTPUT_FILE ${FOLDER}/said.txt ERROR_FILE ${FOLDER}/said.txt)
  file(READ ${FOLDER}/said.txt said)
  if(NOT status EQUAL expected_status OR NOT said MATCHES "${expected_text}")
    message(FATAL_ERROR "${ARGN}\nended with ${status}:\n${said}")
  endif()
endfunction()

run(0 "clip.kpf: 100 frames, 10 of them lost" ${EMULATOR} ${RECORD} clip.kpf)
run(0 "frame 8 at 1700000000.160000 s: mean 471.9.*frame 9: lost.*320 x 240, 12 bits, complete"
  ${EMULATOR} ${READ} clip.kpf)
run(1 "already there" ${EMULATOR} ${RECORD} clip.kpf)
run(1 "none.kpf" ${EMULATOR} ${READ} none.kpf)
