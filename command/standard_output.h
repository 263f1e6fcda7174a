#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace kestrel::command {

// Thrown where output cannot be written; the text is the system's reason.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Takes output, and throws OutputError if it cannot be written.
using Writer = std::function<void(const std::string&)>;

// The writer of the program: standard output, past its buffer.
void WriteToStandardOutput(const std::string& text);

}  // namespace kestrel::command
