# The installed headers stop hosts that could not work with the library, and say what to do.
#
#   cmake -DBUILD=... -DWORK=... -DCOMPILER=... [-DCLANG=...] -P check_guards.cmake
#
# BUILD     a build tree of the library with libstdc++
# COMPILER  the compiler that BUILD used; CLANG, one that can use libc++

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix" --component development)
file(WRITE "${WORK}/host.cpp" "#include <system/hardware_survey.h>\n#include <utils/memory_observer.h>\n"
                              "int main() { return kestrel::system::SurveyHardware().gpuSurvey.second.size(); }\n")
file(WRITE "${WORK}/X11/Xlib.h" "#define Success 0\n")
file(WRITE "${WORK}/x_first.cpp" "#include <X11/Xlib.h>\n#include <system/result.h>\n")
set(flags -std=c++17 -fsyntax-only "-I${WORK}" "-I${WORK}/prefix/include/kestrelcore")

run("${COMPILER}" ${flags} "${WORK}/host.cpp")

# expect_refusal(<message> <compiler> <argument>...)
function(expect_refusal message)
  execute_process(COMMAND ${ARGN} ${flags} OUTPUT_VARIABLE output ERROR_VARIABLE output
                  RESULT_VARIABLE status)
  if(status EQUAL 0 OR NOT output MATCHES "${message}")
    message(FATAL_ERROR "${ARGN} is not refused with '${message}':\n${output}")
  endif()
endfunction()

set(other_library "error:? \"?kestrelcore was built with libstdc\\+\\+ with _GLIBCXX_USE_CXX11_ABI=1. Build this")
expect_refusal("${other_library}" "${COMPILER}" -D_GLIBCXX_USE_CXX11_ABI=0 "${WORK}/host.cpp")
expect_refusal("${other_library}" "${COMPILER}" -D_GLIBCXX_DEBUG "${WORK}/host.cpp")
if(CLANG)
  run("${CLANG}" ${flags} "${WORK}/host.cpp")
  expect_refusal("${other_library}" "${CLANG}" -stdlib=libc++ "${WORK}/host.cpp")
endif()
expect_refusal("A macro Success, such as that of <X11/Xlib.h>" "${COMPILER}" "${WORK}/x_first.cpp")
