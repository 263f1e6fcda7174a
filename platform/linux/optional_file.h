#pragma once

#include <fcntl.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

// Reads files that need not exist. A missing file is an answer: the kernel lacks the feature, or
// the process may not see it. Any other failure leaves the answer open. The functions report it by
// setting `failed`, which they never clear, so one flag collects the failures of many reads.
//
// A file is named by a directory and a name, which begins with "/". With `base`, an open directory,
// the whole path is relative to that one, although it begins with "/". That is faster where many
// files have the beginning of their paths in common.

namespace kestrel::platform {

// Whether the error of an open or a read means that this process has no such file: it is missing,
// its group was removed (ENODEV), or access is denied, which is permanent in a confined process.
// EMFILE, ENOMEM or EIO, for example, say nothing about the file.
[[nodiscard]] bool MeansAbsent(int error) noexcept;

// Whether the file exists. Sets `failed` if that cannot be determined.
[[nodiscard]] bool FileExists(std::string_view directory, std::string_view name, bool& failed,
                              int base = AT_FDCWD) noexcept;

// Reads a file. A text that is larger than the buffer is truncated. Returns `nullopt` if the file
// is absent, the path is too long, or reading failed.
[[nodiscard]] std::optional<std::string_view> ReadOptionalFile(std::string_view directory,
                                                               std::string_view name, char* buffer,
                                                               std::size_t size, bool& failed,
                                                               int base = AT_FDCWD) noexcept;

// Reads a file that holds one number and a newline. Returns `nullopt` as above, and if the file
// holds anything else ("max", for example).
[[nodiscard]] std::optional<std::uint64_t> ReadOptionalNumber(std::string_view directory,
                                                              std::string_view name, bool& failed,
                                                              int base = AT_FDCWD) noexcept;

}  // namespace kestrel::platform
