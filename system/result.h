#pragma once

#include <cstdint>
#include <string>

namespace kestrel::system {

/// How a survey ended. The numbers cross the library boundary and never change.
enum class ResultCode : std::int32_t {
  Unknown = 0,            ///< No survey has filled this record yet.
  Success = 1,            ///< The survey ran; the data beside this status are valid.
  Failure = 2,            ///< CPU detection failed; the message says why.
  NoDevices = 3,          ///< The GPU runtime could not report a device count.
  DeviceQueryFailed = 4,  ///< A query about one GPU failed.
};

/// The status that stands beside every survey's data. Only `Success` makes that data valid;
/// beside any other code it is empty or default, never partial.
struct Result {
  ResultCode code = ResultCode::Unknown;
  std::string message;  ///< Empty on success; otherwise says in words which step failed.
};

}  // namespace kestrel::system
