#pragma once

#include <cstdint>
#include <string>

// A byte count as people read it, with two decimals: powers of 1000 ("1.54 KB") or of 1024
// ("1.50 KiB"), in units up to TB and TiB; "0 Bytes" for none.
std::string BytesToStr(std::uint64_t bytes, bool decimalUnits);
