#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrel::tests {

// One call of an interface under attack. Making it and writing down what it returned are apart, so
// that the fault strikes the call alone.
struct Call {
  const char* name;
  void (*make)(int pid);  // `pid`: the process that the meters of processes measure
  std::string (*text)();  // what the call last returned
};

// A call from a function that makes it and one that turns its result into text.
template <auto kMake, auto kText>
class CallOf {
 public:
  static constexpr Call Named(const char* name) { return {name, Make, Text}; }

 private:
  using Result = decltype(kMake(0));

  static void Make(int pid) { result = kMake(pid); }
  static std::string Text() { return kText(*result); }

  static inline std::optional<Result> result;
};

// The calls of the interface that the program is linked with.
std::vector<Call> Calls();

}  // namespace kestrel::tests
