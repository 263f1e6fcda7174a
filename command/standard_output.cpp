#include "command/standard_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace kestrel::command {

void WriteToStandardOutput(const std::string& text) {
  errno = 0;
  const bool written =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  if (!written) {
    throw OutputError(std::generic_category().message(errno));
  }
}

}  // namespace kestrel::command
