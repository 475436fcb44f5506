# The examples do what they say.
set(folder ${PROJECT_BINARY_DIR}/examples_out)
file(MAKE_DIRECTORY ${folder})
add_test(NAME example_record COMMAND record_frames ./example.kpf WORKING_DIRECTORY ${folder})
add_test(NAME example_amplify COMMAND amplify_motion)
set_tests_properties(example_record PROPERTIES
  PASS_REGULAR_EXPRESSION "example.kpf: 100 frames, complete")
set_tests_properties(example_record example_amplify PROPERTIES
  LABELS examples ENVIRONMENT "OMP_WAIT_POLICY=passive;${VLM_TEST_ENVIRONMENT}")
