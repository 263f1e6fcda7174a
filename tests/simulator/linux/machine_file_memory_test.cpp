#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "simulator/machine_file.h"

namespace {

// How many allocations succeed before all others fail; negative: all succeed.
long successes_left = -1;

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = successes_left == 0 ? nullptr : std::malloc(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  successes_left -= successes_left > 0 ? 1 : 0;
  return memory;
}

// Not inline: the compiler would see a call of free() for memory from operator new, and warn.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace kestrel::tests {

namespace {

// Returns whether the text was parsed although so few allocations succeed.
bool ParsesWith(long successes) {
  const char* const text =
      "[[device]]\n"
      "name = 'a card with a name that needs memory'\n"
      "arch = 'gfx1100'\n"
      "integrated = false\n"
      "total_memory = 1_000\n"
      "free_memory = 900\n";
  const std::string path = "/a/path/that/needs/memory/machine.toml";
  successes_left = successes;
  bool parsed = true;
  try {
    static_cast<void>(simulator::ParseMachine(text, path));
  } catch (const std::bad_alloc&) {
    parsed = false;
  }
  successes_left = -1;
  return parsed;
}

// The program would end if a noexcept function on the way allocated.
TEST(MachineFileMemoryTest, LackOfMemoryReachesTheCaller) {
  long successes = 0;
  while (successes < 10'000 && !ParsesWith(successes)) {
    ++successes;
  }
  EXPECT_GT(successes, 1);
  EXPECT_TRUE(ParsesWith(successes));
}

}  // namespace

}  // namespace kestrel::tests
