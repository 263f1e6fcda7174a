#include "command/fits.h"

#include <string>

#include "command/amounts.h"
#include "command/machine_survey.h"

namespace kestrel::command {

namespace {

Outcome Undetermined(const kestrel_result& result) {
  return {kUndetermined, "",
          "kestrel fits: cannot be determined: " + ToPart(result.status, result).message};
}

Outcome Fitting(std::uint64_t bytes, std::uint64_t spare, const std::string& where) {
  return {kSuccess,
          "fits: " + SizeText(bytes) + " leaves " + SizeText(spare) + " (" + where + ")\n", ""};
}

Outcome Failing(std::uint64_t bytes, std::uint64_t missing, const std::string& where) {
  return {
      kWouldFail,
      "would fail: " + SizeText(bytes) + " is " + SizeText(missing) + " too much (" + where + ")\n",
      ""};
}

Outcome FitsRam(std::uint64_t bytes) {
  kestrel_result result = NewResult();
  kestrel_forecast forecast{};
  forecast.struct_size = sizeof(forecast);
  if (kestrel_memory_forecast(bytes, &forecast, &result) != KESTREL_OK) {
    return Undetermined(result);
  }
  const std::string where =
      SizeText(forecast.available) + " available and " + SizeText(forecast.committable) +
      " committable beyond that, limited by " + LimitText(forecast.limit, forecast.limit_group);
  return forecast.outcome == KESTREL_FORECAST_FITS ? Fitting(bytes, forecast.spare, where)
                                                   : Failing(bytes, forecast.missing, where);
}

Outcome FitsVram(std::uint64_t bytes, int device) {
  kestrel_result result = NewResult();
  std::uint64_t free = 0;
  if (kestrel_gpu_memory(device, &free, nullptr, &result) != KESTREL_OK) {
    return Undetermined(result);
  }
  const std::string where = SizeText(free) + " free on device " + std::to_string(device);
  return bytes <= free ? Fitting(bytes, free - bytes, where) : Failing(bytes, bytes - free, where);
}

}  // namespace

Outcome RunFits(const FitsRequest& request) {
  return request.vram ? FitsVram(request.bytes, request.device) : FitsRam(request.bytes);
}

}  // namespace kestrel::command
