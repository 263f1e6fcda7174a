#pragma once

#include <kestrelcore_export.h>  // first: it refuses a macro named Success

#include <cstdint>
#include <string>

namespace kestrel::system {

/// How a survey ended. The numbers cross the library boundary and never change.
enum class ResultCode : std::int32_t {
  Unknown = 0,            ///< No survey has filled this record yet.
  Success = 1,            ///< The survey ran; the data next to this status is valid.
  Failure = 2,            ///< CPU detection failed; the message says why.
  NoDevices = 3,          ///< The GPU runtime could not report a device count.
  DeviceQueryFailed = 4,  ///< A query about one GPU failed.
};

/// The status that every survey returns next to its data. Only `Success` makes the data valid; with
/// any other code the data is empty or default, never partial.
struct Result {
  ResultCode code = ResultCode::Unknown;
  std::string message;  ///< Empty on success; otherwise names the step that failed.
};

}  // namespace kestrel::system
