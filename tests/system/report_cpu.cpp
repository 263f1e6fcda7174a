// Prints the outcome of SurveyCpu. Built without AVX2, so that it also runs on emulated processors
// that lack it.

#include <iostream>

#include "system/cpu_survey.h"

int main() {
  const auto [result, cpu] = kestrel::system::SurveyCpu();
  std::cout << static_cast<int>(result.code) << " " << CpuArchitectureToStr(cpu.architecture)
            << " [" << CpuInstructionSetExtensionsToStr(cpu.supportedInstructionSetExtensions)
            << "]\n";
}
