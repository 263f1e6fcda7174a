#include "c/call.h"
#include "c/message.h"
#include "utils/measure_cpu_usage.h"
#include "utils/measure_memory.h"

namespace kestrel::c {

namespace {

kestrel_status ReportProcessFailure(int32_t pid, Message& message,
                                    kestrel_result* result) noexcept {
  return Report(result, pid < 1 ? KESTREL_INVALID_ARGUMENT : KESTREL_PROCESS_QUERY_FAILED,
                message.TextOr("Failed to read the figures of the process"));
}

}  // namespace

}  // namespace kestrel::c

using kestrel::c::Measure;
using kestrel::c::Message;
using kestrel::c::ReportProcessFailure;
using kestrel::c::ReportSuccess;

kestrel_status kestrel_cpu_usage(int32_t pid, int32_t interval_milliseconds, float* percent,
                                 kestrel_result* result) {
  return Measure(percent, -1.0F, result, [&] {
    Message message(result);
    *percent = kestrel_utils::MeasureCpuUsage(pid, interval_milliseconds, message.Sink());
    return *percent < 0 ? ReportProcessFailure(pid, message, result) : ReportSuccess(result);
  });
}

kestrel_status kestrel_process_used_ram(int32_t pid, uint64_t* bytes, kestrel_result* result) {
  return Measure(bytes, uint64_t{0}, result, [&] {
    Message message(result);
    const long long used = kestrel_utils::MeasureProcessUsedRam(pid, message.Sink());
    if (used < 0) {
      return ReportProcessFailure(pid, message, result);
    }
    *bytes = static_cast<uint64_t>(used);
    return ReportSuccess(result);
  });
}
