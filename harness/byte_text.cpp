#include "byte_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <sstream>

namespace {

struct Unit {
  double divisor;
  const char* name;
};

struct UnitTable {
  double log_of_base;  // natural logarithm of the step from unit to unit
  std::array<Unit, 5> units;
};

constexpr UnitTable kDecimalUnits = {
    6.907755278982137,  // ln(1000)
    {{{1.0, "Bytes"}, {1e3, "KB"}, {1e6, "MB"}, {1e9, "GB"}, {1e12, "TB"}}}};

constexpr UnitTable kBinaryUnits = {6.931471805599453,  // ln(1024)
                                    {{{1.0, "Bytes"},
                                      {1024.0, "KiB"},
                                      {1048576.0, "MiB"},
                                      {1073741824.0, "GiB"},
                                      {1099511627776.0, "TiB"}}}};

}  // namespace

// At exact powers the logarithm may round to the unit below; that is not corrected, by design.
std::string BytesToStr(std::uint64_t bytes, bool decimalUnits) {
  if (bytes == 0) {
    return "0 Bytes";
  }
  const UnitTable& table = decimalUnits ? kDecimalUnits : kBinaryUnits;
  const auto amount = static_cast<double>(bytes);
  const auto power = static_cast<std::size_t>(std::floor(std::log(amount) / table.log_of_base));
  const Unit& unit = table.units[std::min(power, table.units.size() - 1)];
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << amount / unit.divisor << ' ' << unit.name;
  return text.str();
}
