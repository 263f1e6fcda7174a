// A C++ host that keeps what the C interface returns in its own standard library's types.

#include <kestrelcore.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

std::string NamesOf(const std::vector<kestrel_gpu>& gpus) {
  std::string names;
  for (const kestrel_gpu& gpu : gpus) {
    names += (names.empty() ? "" : ", ") + std::string(gpu.name);
  }
  return names;
}

}  // namespace

int main() {
  std::size_t count = 0;
  if (kestrel_survey_gpus(nullptr, 0, &count, nullptr) != KESTREL_OK) {
    return 1;
  }
  std::vector<kestrel_gpu> gpus(count);
  gpus.at(0).struct_size = sizeof(kestrel_gpu);
  if (kestrel_survey_gpus(gpus.data(), gpus.size(), &count, nullptr) != KESTREL_OK) {
    return 1;
  }
  kestrel_cpu cpu{};
  cpu.struct_size = sizeof(cpu);
  if (kestrel_survey_cpu(&cpu, nullptr) != KESTREL_OK) {
    return 1;
  }
  const std::string extensions = kestrel_cpu_extension_names(cpu.extensions);
  static_cast<void>(std::printf("%s; %s\n", NamesOf(gpus).c_str(), extensions.c_str()));
  return 0;
}
