#include "meters.h"

// The other way to write the includes. Both units include both interfaces, so that names would
// clash.
#include <kestrelcore/system/hardware_survey.h>
#include <kestrelcore/utils/cpu_usage.h>
#include <kestrelcore/utils/memory_observer.h>
#include <utils/memory_observer.h>

#include <utility>

using kestrel_utils::MemoryObserver;

bool MetersAnswer() {
  MemoryObserver observer;
  MemoryObserver other(observer);
  observer = other;
  observer = std::move(other);
  const int& error_code = MemoryObserver::kRamMeterErrorCode;  // needs the exported data itself
  const long long physical = MemoryObserver::getMachinePhysicalRAM();
  return error_code == -1 && MemoryObserver::getProcessUsedRAM(0) == error_code && physical > 0 &&
         observer.getAvailableRAM() <= physical && observer.getUsedRAM() >= 0 &&
         MemoryObserver::getMachinePhysicalVRAM() >= 0 && observer.getAvailableVRAM() >= 0 &&
         !observer.willFailToAllocate(0) && observer.willFailToAllocate(-1) &&
         kestrel_utils::GetCpuUsage(0, 0) == -1.0F;
}
