#pragma once

#include <array>

namespace kestrel::tests {

// The file name of a library or program.
using PlaceText = std::array<char, 128>;

// Writes to `place` where this process is when a signal or a call of exit() ends it: the first of
// the libraries on the stack that is not one of the C or C++ library.
void RecordLastPlace(PlaceText& place);

}  // namespace kestrel::tests
