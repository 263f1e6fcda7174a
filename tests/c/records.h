#pragma once

#include <cstring>

#include "c/kestrelcore.h"

namespace kestrel::tests {

// A record as a host hands it over.
template <typename Record>
Record NewRecord() {
  Record record{};
  record.struct_size = sizeof(Record);
  return record;
}

// The result of an earlier call that failed, which each call replaces.
inline kestrel_result UsedResult() {
  auto result = NewRecord<kestrel_result>();
  result.status = KESTREL_RUNTIME_FAILED;
  std::strcpy(result.message, "of an earlier call");
  return result;
}

}  // namespace kestrel::tests
