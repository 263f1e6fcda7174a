#include <cstring>
#include <limits>
#include <optional>

#include "c/call.h"
#include "c/message.h"
#include "platform/platform.h"
#include "utils/measure_memory.h"

namespace kestrel::c {

namespace {

constexpr const char* kNoMemoryStatus = "Failed to get global memory status.";

// Reports one figure of the machine's RAM; `query` returns it, or `nullopt` if the system does not.
template <typename Query>
kestrel_status MeasureRam(uint64_t* bytes, kestrel_result* result, Query query) noexcept {
  return Measure(bytes, uint64_t{0}, result, [&] {
    const std::optional<uint64_t> figure = query();
    if (!figure) {
      return Report(result, KESTREL_MEMORY_QUERY_FAILED, kNoMemoryStatus);
    }
    *bytes = *figure;
    return ReportSuccess(result);
  });
}

template <typename Figure>
std::optional<uint64_t> FromMemoryStatus(Figure figure) noexcept {
  const auto status = platform::QueryMemoryStatus();
  return status ? std::optional<uint64_t>(figure(*status)) : std::nullopt;
}

// Bytes that can still be allocated after an allocation that fits.
uint64_t SpareBytes(uint64_t bytes, const platform::MemoryStatus& status) noexcept {
  if (bytes > status.available_physical) {
    return status.committable - (bytes - status.available_physical);
  }
  const uint64_t left = status.available_physical - bytes;
  constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max();
  return left > kMost - status.committable ? kMost : left + status.committable;
}

int32_t LimitOf(platform::MemoryLimit limit) noexcept {
  switch (limit) {
    case platform::MemoryLimit::kMachine:
      return KESTREL_LIMIT_MACHINE;
    case platform::MemoryLimit::kMemoryGroup:
      return KESTREL_LIMIT_GROUP;
    case platform::MemoryLimit::kCommitLimit:
      return KESTREL_LIMIT_COMMIT;
  }
  return KESTREL_LIMIT_UNKNOWN;
}

kestrel_forecast Forecast(uint64_t bytes, const platform::MemoryStatus& status,
                          const platform::GroupDirectory& directory) noexcept {
  kestrel_forecast forecast{};
  forecast.missing = kestrel_utils::MissingBytes(bytes, status);
  forecast.spare = forecast.missing > 0 ? 0 : SpareBytes(bytes, status);
  forecast.outcome = forecast.missing > 0 ? KESTREL_FORECAST_FAILS : KESTREL_FORECAST_FITS;
  forecast.available = status.available_physical;
  forecast.committable = status.committable;
  forecast.limit = LimitOf(status.limit);
  CopyText(directory.data(), std::strlen(directory.data()), forecast.limit_group);
  return forecast;
}

}  // namespace

}  // namespace kestrel::c

using kestrel::c::Forecast;
using kestrel::c::FromMemoryStatus;
using kestrel::c::Guarded;
using kestrel::c::IsRecord;
using kestrel::c::kNoMemoryStatus;
using kestrel::c::Measure;
using kestrel::c::MeasureRam;
using kestrel::c::Message;
using kestrel::c::Report;
using kestrel::c::ReportInvalid;
using kestrel::c::ReportSuccess;
using kestrel::c::WriteRecord;

kestrel_status kestrel_machine_physical_ram(uint64_t* bytes, kestrel_result* result) {
  return MeasureRam(bytes, result, kestrel::platform::QueryTotalPhysicalMemory);
}

kestrel_status kestrel_available_ram(uint64_t* bytes, kestrel_result* result) {
  return MeasureRam(bytes, result, [] {
    return FromMemoryStatus([](const auto& status) { return status.available_physical; });
  });
}

kestrel_status kestrel_used_ram(uint64_t* bytes, kestrel_result* result) {
  return MeasureRam(bytes, result, [] {
    return FromMemoryStatus(
        [](const auto& status) { return status.total_physical - status.available_physical; });
  });
}

kestrel_status kestrel_will_fail_to_allocate(uint64_t bytes, int32_t* will_fail,
                                             kestrel_result* result) {
  return Measure(will_fail, int32_t{0}, result, [&] {
    Message message(result);
    const bool fails =
        kestrel_utils::PredictAllocationFailure(static_cast<long long>(bytes), message.Sink());
    if (message.IsReported()) {
      return Report(result, KESTREL_MEMORY_QUERY_FAILED, message.TextOr(kNoMemoryStatus));
    }
    *will_fail = fails ? 1 : 0;
    return ReportSuccess(result);
  });
}

kestrel_status kestrel_memory_forecast(uint64_t bytes, kestrel_forecast* forecast,
                                       kestrel_result* result) {
  return Guarded(result, [&] {
    if (!IsRecord(forecast)) {
      return ReportInvalid(result, "forecast is null, or its struct_size is not set");
    }
    kestrel::platform::GroupDirectory directory{};
    const auto status = kestrel::platform::QueryMemoryLimit(directory);
    WriteRecord(forecast, forecast->struct_size,
                status ? Forecast(bytes, *status, directory) : kestrel_forecast{});
    return status ? ReportSuccess(result)
                  : Report(result, KESTREL_MEMORY_QUERY_FAILED, kNoMemoryStatus);
  });
}
