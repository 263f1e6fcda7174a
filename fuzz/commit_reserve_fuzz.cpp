// ParseStatusLine and CommitReserve against references. The input's first line has the two reserves
// of the kernel's settings, the rest is the text of /proc/self/status.

#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/commit_reserve.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Headed input = SplitHead(TextOf(data, size));
  const std::vector<std::string> reserves = Split(input.head, ' ');
  platform::ReserveFigures figures;
  figures.user_reserve = WholeNumber(reserves.front()).value_or(0);
  figures.admin_reserve = WholeNumber(reserves.back()).value_or(0);
  for (const std::string& line : CompleteLines(input.rest)) {
    platform::ParseStatusLine(line, figures);
  }
  const StatusFigures expected = StatusFiguresOf(CompleteLines(input.rest));
  Require(figures.address_space == expected.address_space, "VmSize is that of the reference");
  Require(figures.has_sys_admin == expected.has_sys_admin, "CapEff is that of the reference");

  const std::uint64_t reserve = platform::CommitReserve(figures);
  Require(reserve == ReserveOf(figures.user_reserve, figures.admin_reserve, expected),
          "the reserve is that of the reference");
  return 0;
}

}  // namespace kestrel::fuzz
