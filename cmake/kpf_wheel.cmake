# SPDX-License-Identifier: MIT
# Makes a wheel of the package in SOURCE, with LIBRARY inside, and leaves it in FOLDER. From a copy:
# pip writes into the source what it does not take away.
set(copy ${FOLDER}/source)
file(REMOVE_RECURSE ${copy})
file(COPY ${SOURCE}/ DESTINATION ${copy} PATTERN __pycache__ EXCLUDE)
file(COPY_FILE ${LIBRARY} ${copy}/kpf/${NAME})
execute_process(
  COMMAND ${PYTHON} -m pip wheel --quiet --no-build-isolation --no-deps --no-index
    --disable-pip-version-check --wheel-dir ${FOLDER} ${copy}
  COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${copy})
