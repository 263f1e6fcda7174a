# For scripts that run one command after another: each stops the script, with all that the command
# wrote, unless it ends as it should. What it wrote is in `output` afterwards.

# Readers of ELF files and others translate what they write, and the scripts look for English words.
set(ENV{LC_ALL} C.UTF-8)
unset(ENV{LANGUAGE})

# run_expecting(<exit status> <command> <argument>...)
function(run_expecting expected)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output
                  RESULT_VARIABLE status)
  if(NOT status EQUAL expected)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# run(<command> <argument>...)
macro(run)
  run_expecting(0 ${ARGN})
endmacro()
