// The byte formatter of the harness against the exact quotient. The input is the number of bytes.

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cmath>

#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "harness/byte_text.h"

namespace kestrel::fuzz {

namespace {

using Names = std::array<const char*, 5>;
constexpr Names kDecimalNames = {"Bytes", "KB", "MB", "GB", "TB"};
constexpr Names kBinaryNames = {"Bytes", "KiB", "MiB", "GiB", "TiB"};

void RequireText(std::uint64_t bytes, bool decimal) {
  const std::vector<std::string> words = Split(BytesToStr(bytes, decimal), ' ');
  Require(words.size() == 2, "a text is a figure and a unit");
  const std::string& figure = words[0];
  if (bytes == 0) {
    Require(figure == "0" && words[1] == "Bytes", "no bytes have no decimals");
    return;
  }
  const std::uint64_t step = decimal ? 1000 : 1024;
  std::size_t index = 0;
  std::uint64_t unit = 1;
  while (index < 4 && bytes / unit >= step) {
    unit *= step;
    ++index;
  }
  // At an exact power the formatter's logarithm may be rounded down.
  const Names& names = decimal ? kDecimalNames : kBinaryNames;
  if (bytes == unit && index > 0 && words[1] == names[index - 1]) {
    unit /= step;
    --index;
  }
  Require(words[1] == names[index], "the unit is the largest that the bytes fill");

  const std::size_t point = figure.find('.');
  Require(point != std::string::npos && figure.size() == point + 3 &&
              WholeNumber(figure.substr(0, point)) && WholeNumber(figure.substr(point + 1)),
          "the figure has two decimals");
  // The formatter's quotient is a double; long double has 11 bits more.
  const long double exact = static_cast<long double>(bytes) / static_cast<long double>(unit);
  const long double error = std::fabs(std::strtold(figure.c_str(), nullptr) - exact);
  Require(error <= 0.005L + exact * 0x1p-51L, "the figure is the quotient, rounded");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto bytes = input.ConsumeIntegral<std::uint64_t>();
  for (const std::uint64_t amount : {bytes, bytes >> (size % 64), bytes % 1'000'000}) {
    RequireText(amount, true);
    RequireText(amount, false);
  }
  return 0;
}

}  // namespace kestrel::fuzz
