#pragma once

#include <atomic>

#include "hip_binding/binding_report.h"

namespace kestrel::hip_binding {

// Remembers the runtime of the process. Once found it stays the same and stays loaded; as long as
// none is found, each call searches again. May be called from any thread; takes no lock of its own.
class Binding {
 public:
  constexpr Binding() noexcept = default;

  // The handle of the runtime; null if the machine has none.
  [[nodiscard]] void* Runtime() noexcept;

  // See ReportBinding.
  void Report(BindingReport& report) noexcept;

 private:
  void* Bind(BindingReport* report) noexcept;

  // The handle alone, with the functions looked up at each call (about 0.1 us each): a table of
  // them would need a lock or a heap.
  std::atomic<void*> runtime_{nullptr};
};

}  // namespace kestrel::hip_binding
