# Runs a fuzz target over its corpus and then over inputs that it makes from it, RUNS in all. With the
# seed fixed, they are the same in every run.
#
#   cmake -DTARGET=... -DRUNS=... -DCORPUS=... -DDICTIONARY=... -DWORK=... -P run_target.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

# The made-up machines are files, which are fastest in memory.
execute_process(COMMAND test -w /dev/shm RESULT_VARIABLE status)
if(status EQUAL 0)
  set(ENV{TMPDIR} /dev/shm)
endif()

# libFuzzer writes new inputs to the first folder, and only reads the second.
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}/new")
set(options -runs=${RUNS} -seed=1 -timeout=60 -print_final_stats=1 "-artifact_prefix=${WORK}/")
if(EXISTS "${DICTIONARY}")
  list(APPEND options "-dict=${DICTIONARY}")
endif()
run("${TARGET}" ${options} "${WORK}/new" "${CORPUS}")

# Fails if the corpus was not read or the runs were not made.
if(NOT output MATCHES "INFO: +[0-9]+ files found in ${CORPUS}"
   OR NOT output MATCHES "stat::number_of_executed_units: +${RUNS}")
  message(FATAL_ERROR "${output}")
endif()
