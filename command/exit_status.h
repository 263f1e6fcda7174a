#pragma once

namespace kestrel::command {

// The exit statuses of every subcommand. They are part of the interface: scripts branch on them.
inline constexpr int kSuccess = 0;
inline constexpr int kWouldFail = 1;       // `fits` alone
inline constexpr int kUndetermined = 2;    // `fits` alone
inline constexpr int kWrongUsage = 64;     // EX_USAGE of sysexits.h
inline constexpr int kFailure = 70;        // EX_SOFTWARE: a figure could not be read
inline constexpr int kOutputFailure = 74;  // EX_IOERR: the output could not be written

}  // namespace kestrel::command
