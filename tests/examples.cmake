# The examples do what they say.
set(folder ${PROJECT_BINARY_DIR}/examples_out)
file(MAKE_DIRECTORY ${folder})
add_test(NAME example_record COMMAND record_frames ./example.kpf WORKING_DIRECTORY ${folder})
add_test(NAME example_amplify COMMAND amplify_motion)
set_tests_properties(example_record PROPERTIES
  PASS_REGULAR_EXPRESSION "example.kpf: 100 frames, complete")
set_tests_properties(example_record example_amplify PROPERTIES
  LABELS examples ENVIRONMENT "OMP_WAIT_POLICY=passive")

if(NOT VLM_SANITIZE)
  add_test(NAME example_record_c COMMAND ${CMAKE_COMMAND}
    -D RECORD=$<TARGET_FILE:record_c> -D READ=$<TARGET_FILE:read_c>
    -D "EMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}" -D FOLDER=${folder}/c
    -P ${CMAKE_CURRENT_LIST_DIR}/check_c_examples.cmake)
  add_test(NAME example_amplify_c COMMAND amplify_c)
  set_tests_properties(example_record_c example_amplify_c PROPERTIES
    LABELS "examples;capi" ENVIRONMENT "OMP_WAIT_POLICY=passive")
  set_tests_properties(example_amplify_c PROPERTIES
    PASS_REGULAR_EXPRESSION "the edge moves by 4 of 255, amplified by 36")
endif()
