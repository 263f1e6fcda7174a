#pragma once

#include <fuzzer/FuzzedDataProvider.h>

namespace kestrel::fuzz {

// Makes the calls of the C interface that kestrel surveys a machine by answer from this input, with
// any status, figures and names. The input must outlive them.
void AnswerFrom(FuzzedDataProvider& input);

}  // namespace kestrel::fuzz
