# Builds and runs the C++ and the C program of a page, on a simulated machine.
#
#   cmake -DPAGE=... -DWORK=... -DCXX=... -DC=... -DINCLUDE=... -DLIBRARIES=... -DRUNTIME=...
#         -DMACHINE=... -P check_snippets.cmake
#
# INCLUDE    the folder `kestrelcore` of the public headers
# LIBRARIES  the folders of the C++ and the C library
# RUNTIME    the folder of the simulated HIP runtime

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
file(READ "${PAGE}" page)
list(TRANSFORM LIBRARIES PREPEND -L OUTPUT_VARIABLE folders)
list(JOIN LIBRARIES ":" search)
set(ENV{LD_LIBRARY_PATH} "${search}:${RUNTIME}")
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")

# The rest of the arguments is the compiler with its options.
function(check language library expected)
  set(fence "```${language}\n")
  string(FIND "${page}" "${fence}" begin)
  if(begin EQUAL -1)
    message(FATAL_ERROR "${PAGE} has no program in ${language}")
  endif()
  string(LENGTH "${fence}" length)
  math(EXPR begin "${begin} + ${length}")
  string(SUBSTRING "${page}" ${begin} -1 program)
  string(FIND "${program}" "```" end)
  string(SUBSTRING "${program}" 0 ${end} program)
  file(WRITE "${WORK}/program.${language}" "${program}")
  run(${ARGN} -Wall -Wextra -Werror "-I${INCLUDE}" "${WORK}/program.${language}" -o "${WORK}/program"
      ${folders} -l${library})
  run("${WORK}/program")
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "The program in ${language} of ${PAGE} prints: ${output}")
  endif()
endfunction()

check(cpp kestrelcore "^2 GPUs\\. \n(It fits|Too large)\\.\n$" "${CXX}" -std=c++17)
check(c kestrelcore-c "^[0-9]+ bytes of RAM available\\. (It fits|Too large)\\.\n$" "${C}" -std=c99)
