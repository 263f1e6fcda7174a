#pragma once

namespace kestrel::tests {

// A record as a host hands it over.
template <typename Record>
Record NewRecord() {
  Record record{};
  record.struct_size = sizeof(Record);
  return record;
}

}  // namespace kestrel::tests
