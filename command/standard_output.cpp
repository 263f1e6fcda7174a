#include "command/standard_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace kestrel::command {

std::string WriteOutput(std::string_view text) {
  errno = 0;
  const bool written =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  return written ? "" : std::generic_category().message(errno);
}

}  // namespace kestrel::command
