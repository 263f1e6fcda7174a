#pragma once

#include "command/bound_runtime.h"

namespace kestrel::tests {

// What command::BindRuntime returns.
command::RuntimeState& BoundRuntime();

}  // namespace kestrel::tests
