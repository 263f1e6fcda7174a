#pragma once

#include <cstdint>
#include <string>

// Returns a byte count with two decimals and a unit: powers of 1000 ("1.54 KB") or of 1024
// ("1.50 KiB"), up to TB and TiB; "0 Bytes" for 0.
std::string BytesToStr(std::uint64_t bytes, bool decimalUnits);
