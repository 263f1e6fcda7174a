#pragma once

#include "command/manual.h"

namespace kestrel::tests {

// A program with every kind of option, argument and text that a page or a completion treats in a
// way of its own.
inline command::Manual ExampleManual() {
  const command::Parameter help = {"--help", "h", "", "Print help", {}, ""};
  return {"tool-zap",
          "A tool's summary",
          {"Ends with a \\ and an a-b.", ".second", "'third'", "X."},
          {help, {"--version", "", "", "Print the version", {}, ""}},
          {{"open",
            "Open a tool's box",
            {"Opens."},
            {{"FILE", "", "FILE", "The box", {}, ""}},
            {{"--level", "l", "LEVEL", "[X]: it's its level", {"low", "high"}, "low"}, help},
            "tool-zap open a.box",
            "Open it"},
           {"wait",
            "Wait for processes",
            {"Waits."},
            {{"PID", "", "PID", "The processes", {}, ""}},
            {{"--parent", "p", "PID", "Its parent", {}, ""}},
            "tool-zap wait 1",
            "Wait for it"},
           {"grow",
            "Grow",
            {"Grows."},
            {{"SIZE", "", "SIZE", "The size", {}, ""}},
            {{"--time", "", "TIME", "How long", {}, ""}},
            "tool-zap grow 1G",
            "Grow it"}},
          {{0, "Success."}, {64, "'Wrong' usage."}},
          {"other(1)", "third(5)"}};
}

// A program without subcommands.
inline command::Manual PlainManual() {
  return {
      "plain",     "Plain",
      {"Plain."},  {{"--pid", "p", "PID", "Process", {}, "-1"}, {"--test", "", "", "Test", {}, ""}},
      {},          {{0, "Success."}},
      {"other(1)"}};
}

}  // namespace kestrel::tests
