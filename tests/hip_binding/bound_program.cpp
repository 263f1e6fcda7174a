// A program over the lazy binding, which runs the steps that its arguments name:
//
//   count       prints what hipGetDeviceCount returns
//   survey      prints how many GPUs SurveyGpus finds, and the name of the last
//   calls       prints which functions of the bound runtime were called
//   threads     makes the first call in eight threads at once
//   report      prints which candidates that exist were passed over, and the file that was bound
//   load=NAME   loads that library, as a host does that uses HIP itself
//   unload      closes it
//   select      makes device 1 of it current
//   current     prints its current device
//   remove=FILE removes that file

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "hip_binding/binding_report.h"
#include "system/gpu_survey.h"
#include "tests/hip_binding/operations.h"

namespace {

using namespace kestrel::hip_binding;

void* host_runtime = nullptr;

int CallHost(const char* name, int argument) {
  return reinterpret_cast<int (*)(int)>(FindFunction(host_runtime, name))(argument);
}

void Count() {
  int count = 0;
  const int status = hipGetDeviceCount(&count);
  std::cout << "status " << status << ", " << count << " devices\n";
}

void Survey() {
  const auto [result, gpus] = kestrel::system::SurveyGpus();
  std::cout << gpus.size() << " GPUs, last " << (gpus.empty() ? "none" : gpus.back().name) << '\n';
}

void CallInThreads() {
  std::vector<std::thread> threads(8);
  for (std::thread& thread : threads) {
    thread = std::thread([] { static_cast<void>(hipSetDevice(0)); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void Report() {
  BindingReport report;
  ReportBinding(report);
  for (std::size_t i = 0; i < report.attempt_count; ++i) {
    const Attempt& attempt = report.attempts[i];
    if (attempt.candidate.origin == Origin::kSearch) {
      std::cout << attempt.candidate.name << ": " << attempt.reason.data() << '\n';
    }
  }
  const std::string path = report.path.data();
  std::cout << "bound: " << path.substr(path.find_last_of("/\\") + 1) << '\n';
}

void RunHostStep(std::string_view step) {
  if (step.substr(0, 5) == "load=") {
    ReasonText reason;
    host_runtime = OpenLibrary({Origin::kSearch, step.substr(5).data()}, reason);
  } else if (step == "unload") {
    CloseLibrary(host_runtime);
  } else if (step == "select") {
    CallHost("hipSetDevice", 1);
  } else if (step == "current") {
    int device = -1;
    reinterpret_cast<int (*)(int*)>(FindFunction(host_runtime, "hipGetDevice"))(&device);
    std::cout << "the host's device: " << device << '\n';
  } else if (step.substr(0, 7) == "remove=") {
    std::remove(step.substr(7).data());
  } else {
    std::cout << "unknown step " << step << '\n';
    std::exit(2);
  }
}

void RunStep(std::string_view step) {
  if (step == "count") {
    Count();
  } else if (step == "survey") {
    Survey();
  } else if (step == "calls") {
    std::cout << hipGetErrorString(0) << '\n';
  } else if (step == "threads") {
    CallInThreads();
  } else if (step == "report") {
    Report();
  } else {
    RunHostStep(step);
  }
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    RunStep(argv[i]);
  }
}
