#pragma once

#include "command/observation.h"

namespace kestrel::command {

// Binds the HIP runtime, as the first HIP call of the process does, and reports how that went.
RuntimeState BindRuntime();

}  // namespace kestrel::command
