#pragma once

#include <string_view>

namespace kestrel::simulator {

enum class OperationKind { status, text, alias };

struct Operation {
  std::string_view name;
  OperationKind kind;
};

constexpr Operation kOperations[] = {
#define OPERATION(name, kind, generation, version) {#name, OperationKind::kind},
#include "simulator/operations.inc"
#undef OPERATION
};

// Whether an operation of that name exists and returns a status: a fault can name only such ones.
constexpr bool ReturnsStatus(std::string_view name) {
  for (const Operation& operation : kOperations) {
    if (operation.name == name) {
      return operation.kind == OperationKind::status;
    }
  }
  return false;
}

}  // namespace kestrel::simulator
