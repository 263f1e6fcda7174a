#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrel::tests {

// The bytes whose allocation is forecast: more than the memory group of an attack allows, and less
// than the recorded machine has (machine.py).
constexpr long long kForecastBytes = 3LL << 29;

// What the meters of processes measure.
struct Pids {
  int other;  // a process that does nothing
  int own;    // that of the call
};

// One call of an interface under attack. Making it and writing down what it returned are apart, so
// that the fault strikes the call alone.
struct Call {
  const char* name;
  void (*make)(Pids pids);
  std::string (*text)();  // what the call last returned
};

// A call from a function that makes it and one that turns its result into text.
template <auto kMake, auto kText>
class CallOf {
 public:
  static constexpr Call Named(const char* name) { return {name, Make, Text}; }

 private:
  using Result = decltype(kMake(Pids{}));

  static void Make(Pids pids) { result = kMake(pids); }
  static std::string Text() { return kText(*result); }

  static inline std::optional<Result> result;
};

// The calls of the interface that the program is linked with.
std::vector<Call> Calls();

}  // namespace kestrel::tests
