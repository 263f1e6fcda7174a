#include "tests/attack/lying_runtime/behaviour.h"

#include <cstdlib>
#include <new>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace kestrel::tests {

namespace {

void Take(const std::string& word, Behaviour& behaviour) {
  const std::size_t equals = word.find('=');
  const std::string key = word.substr(0, equals);
  const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
  if (key == "in") {
    behaviour.operation = value;
  } else if (key == "device") {
    behaviour.device = std::stoi(value);
  } else if (key == "status") {
    behaviour.status = std::stoi(value);
  } else if (key == "writes") {
    behaviour.writes = true;
  } else if (key == "throw") {
    behaviour.thrown = value;
  } else if (key == "null-text") {
    behaviour.null_text = true;
  } else if (key == "count") {
    behaviour.count = std::stoi(value);
  } else if (key == "unterminated") {
    behaviour.unterminated = true;
  } else {
    std::abort();  // an attack that does not happen must not pass
  }
}

}  // namespace

Behaviour TheBehaviour() {
  const char* const text = std::getenv("ATTACK_HIP");
  std::istringstream words(text != nullptr ? text : "");
  Behaviour behaviour;
  for (std::string word; words >> word;) {
    Take(word, behaviour);
  }
  return behaviour;
}

bool Concerns(const Behaviour& behaviour, const char* operation, std::optional<int> device) {
  return behaviour.operation == operation &&
         (!behaviour.device || !device || *behaviour.device == *device);
}

void Throw(const Behaviour& behaviour) {
  if (behaviour.thrown == "bad_alloc") {
    throw std::bad_alloc();
  }
  if (behaviour.thrown == "error") {
    throw std::runtime_error("thrown by the runtime");
  }
  if (behaviour.thrown == "number") {
    throw 42;
  }
  if (behaviour.thrown == "in-thread") {
    std::thread([] { throw std::runtime_error("thrown by a thread of the runtime"); }).join();
  }
  if (!behaviour.thrown.empty()) {
    std::abort();  // an attack that does not happen must not pass
  }
}

}  // namespace kestrel::tests
