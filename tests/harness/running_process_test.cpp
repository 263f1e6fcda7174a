#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <memory>
#include <regex>
#include <string>

// The harness measures this process.

namespace kestrel::tests {
namespace {

std::string OutputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(_popen(command.c_str(), "r"), _pclose);
  std::string text;
  std::array<char, 256> line{};
  while (pipe && std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
    text += line.data();
  }
  return text;
}

TEST(RunningProcessTest, HarnessReportsUsageAndMemory) {
  const std::string pid = std::to_string(GetCurrentProcessId());
  const std::string text =
      OutputOf("kestrel-harness.exe --cpu-test --mem-test -s 20 -p " + pid + " 2>&1");
  const std::regex expected(
      "-{36}\n"
      "\n"
      "\\+\\+ Running test #1 \\+\\+ \n"
      "\n"
      "-{36}\n"
      "CPU Usage \\(PID '" +
      pid +
      "'\\) \\.{7} [0-9.e-]+%\n"
      "Mem Usage \\(PID '" +
      pid + "'\\) \\.{7} [0-9]+\\.[0-9]{2} [KM]B%\n");
  EXPECT_TRUE(std::regex_match(text, expected)) << text;
}

}  // namespace
}  // namespace kestrel::tests
