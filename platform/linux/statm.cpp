#include "platform/linux/statm.h"

#include "platform/linux/text_file.h"

namespace kestrel::platform {

std::optional<std::uint64_t> ParseResidentPages(std::string_view statm) noexcept {
  if (!TakeNumber(statm) || statm.empty() || statm.front() != ' ') {
    return std::nullopt;
  }
  statm.remove_prefix(1);
  const auto resident = TakeNumber(statm);
  return !statm.empty() && statm.front() == ' ' ? resident : std::nullopt;
}

}  // namespace kestrel::platform
