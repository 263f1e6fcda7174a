#include "tests/fakes/bound_runtime_fake.h"

namespace kestrel::tests {

command::RuntimeState& BoundRuntime() {
  static command::RuntimeState state;
  return state;
}

}  // namespace kestrel::tests

namespace kestrel::command {

RuntimeState BindRuntime() { return tests::BoundRuntime(); }

}  // namespace kestrel::command
