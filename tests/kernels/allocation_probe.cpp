// Finds the largest size that the allocation forecast promises, takes a percentage of it and uses
// all of it. What becomes of the process shows whether the forecast was right.
//
//   allocation_probe PERCENT [lock=MIB] [share=MIB] [reserve=MIB] [open=COUNT] [random=PERCENT]
//
// Before it asks, it locks memory, fills shared memory, reserves addresses without memory, or opens
// files "1", "2", ... in the working directory. A part of each page that it uses is
// random, which cannot be compressed.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/platform/linux/forecast_threshold.h"

namespace kestrel::tests {
namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

// Exit codes that tests/kernels/run.sh knows. Shells and failing commands use smaller ones.
constexpr int kLived = 0;
constexpr int kRefused = 10;
constexpr int kNotSetUp = 11;

char* Map(std::uint64_t bytes, int protection, int flags) {
  void* const memory = mmap(nullptr, bytes, protection, flags | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
}

bool Lock(std::uint64_t mebibytes) {
  char* const memory = Map(mebibytes * kMebibyte, PROT_READ | PROT_WRITE, MAP_PRIVATE);
  return memory != nullptr && mlock(memory, mebibytes * kMebibyte) == 0;
}

bool Share(std::uint64_t mebibytes) {
  char* const memory = Map(mebibytes * kMebibyte, PROT_READ | PROT_WRITE, MAP_SHARED);
  if (memory != nullptr) {
    std::memset(memory, 1, mebibytes * kMebibyte);
  }
  return memory != nullptr;
}

// As GPU runtimes do. A mapping without access does not count as committed.
bool Reserve(std::uint64_t mebibytes) {
  return Map(mebibytes * kMebibyte, PROT_NONE, MAP_PRIVATE | MAP_NORESERVE) != nullptr;
}

bool Open(std::uint64_t count) {
  for (std::uint64_t file = 1; file <= count; ++file) {
    if (open(std::to_string(file).c_str(), O_RDONLY | O_CLOEXEC) < 0) {
      return false;
    }
  }
  return true;
}

struct Preparation {
  std::string_view name;
  bool (*run)(std::uint64_t amount);
};

constexpr std::array kPreparations = {Preparation{"lock", Lock}, Preparation{"share", Share},
                                      Preparation{"reserve", Reserve}, Preparation{"open", Open}};

bool Prepare(std::string_view name, std::uint64_t amount) {
  const auto* const found =
      std::find_if(kPreparations.begin(), kPreparations.end(),
                   [name](const Preparation& preparation) { return preparation.name == name; });
  return found != kPreparations.end() && found->run(amount);
}

// Where the whole machine runs out of memory, the kernel is to choose this process.
bool VolunteerForTheKill() {
  std::ofstream file("/proc/self/oom_score_adj");
  file << 1000 << std::flush;
  return file.good();
}

int Run(int argc, char** argv) {
  const std::uint64_t percent = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 0;
  std::uint64_t random_percent = 0;
  bool ready = percent > 0 && VolunteerForTheKill();
  for (int index = 2; ready && index < argc; ++index) {
    const std::string_view word = argv[index];
    const std::string_view name = word.substr(0, word.find('='));
    const std::uint64_t amount =
        name == word ? 0 : std::strtoull(argv[index] + name.size() + 1, nullptr, 10);
    if (name == "random") {
      random_percent = amount;
    } else {
      ready = Prepare(name, amount);
    }
  }
  if (!ready) {
    std::perror("allocation_probe: cannot prepare");
    return kNotSetUp;
  }
  const std::uint64_t threshold = FindThreshold();
  std::printf("%llu\n", static_cast<unsigned long long>(threshold));
  std::fflush(stdout);
  return AllocateAndUse(threshold / 100 * percent, random_percent) ? kLived : kRefused;
}

}  // namespace
}  // namespace kestrel::tests

int main(int argc, char** argv) { return kestrel::tests::Run(argc, argv); }
