#pragma once

#include <cstddef>
#include <cstring>

#include "c/kestrelcore.h"

// How records of another version's host are read and written.

namespace kestrel::c {

// The size of each record when it was first published. No host has a smaller one.
template <typename Record>
inline constexpr std::size_t kFirstSize = 0;
template <>
inline constexpr std::size_t kFirstSize<kestrel_result> = 1032;
template <>
inline constexpr std::size_t kFirstSize<kestrel_cpu> = 16;
template <>
inline constexpr std::size_t kFirstSize<kestrel_gpu> = 616;
template <>
inline constexpr std::size_t kFirstSize<kestrel_forecast> = 1072;

// Far above any record to come: a larger `struct_size` was never set.
inline constexpr std::size_t kLargestSize = 65536;

template <typename Record>
bool IsRecord(const Record* record) noexcept {
  return record != nullptr && record->struct_size >= kFirstSize<Record> &&
         record->struct_size <= kLargestSize && record->struct_size % alignof(Record) == 0;
}

// Writes the fields that both sides know to `destination`, of `size` bytes, and zero to those that
// the host alone knows.
template <typename Record>
void WriteRecord(void* destination, std::size_t size, Record record) noexcept {
  static_assert(sizeof(Record) >= kFirstSize<Record>, "fields are only ever appended");
  record.struct_size = size;
  const std::size_t known = size < sizeof(Record) ? size : sizeof(Record);
  std::memcpy(destination, &record, known);
  std::memset(static_cast<char*>(destination) + known, 0, size - known);
}

// Copies as much of a text as fits. The field is zero before, so that it ends with NUL.
template <std::size_t kSize>
void CopyText(const char* text, std::size_t length, char (&field)[kSize]) noexcept {
  std::memcpy(field, text, length < kSize ? length : kSize - 1);
}

}  // namespace kestrel::c
