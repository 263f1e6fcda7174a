#include "hip_binding/binding.h"

#include "hip_binding/runtime_search.h"

namespace kestrel::hip_binding {

void* Binding::Runtime() noexcept {
  void* const runtime = runtime_.load(std::memory_order_acquire);
  return runtime != nullptr ? runtime : Bind(nullptr);
}

void Binding::Report(BindingReport& report) noexcept {
  report.path[0] = '\0';
  report.attempt_count = 0;
  report.bound_before = runtime_.load(std::memory_order_acquire) != nullptr;
  void* const runtime = report.bound_before ? Runtime() : Bind(&report);
  if (runtime != nullptr) {
    GetLibraryPath(runtime, report.path);
  }
}

void* Binding::Bind(BindingReport* report) noexcept {
  void* const found = FindRuntime(report);
  if (found == nullptr) {
    return nullptr;
  }
  void* bound = nullptr;
  if (runtime_.compare_exchange_strong(bound, found, std::memory_order_acq_rel)) {
    return found;
  }
  // Another thread was first. It has most likely opened the same library, which stays open.
  CloseLibrary(found);
  return bound;
}

}  // namespace kestrel::hip_binding
