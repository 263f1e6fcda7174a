#pragma once

#include <string>
#include <vector>

// What the programs accept on their command lines. The parser and its help, the man pages and the
// completions of the shells are all made from these tables.

namespace kestrel::command {

// An option, or an argument without a dash.
struct Parameter {
  std::string name;                 // "--format", or "SIZE" for an argument
  std::string letter;               // "p" for "-p"; empty if there is none
  std::string value;                // the name of its value; empty for a switch
  std::string help;                 // one sentence, without its full stop
  std::vector<std::string> values;  // all that is allowed, if those are few
  std::string standard;             // the value if it is not given; empty if there is none
};

struct Subcommand {
  std::string name;
  std::string summary;  // one line, without a full stop
  // Paragraphs of the man page.
  std::vector<std::string> description;
  std::vector<Parameter> arguments;
  std::vector<Parameter> options;
  std::string example;          // a command line
  std::string example_meaning;  // what it does
};

struct ExitStatus {
  int number;
  std::string meaning;
};

struct Manual {
  std::string program;
  std::string summary;
  std::vector<std::string> description;
  std::vector<Parameter> options;  // of the program itself
  std::vector<Subcommand> subcommands;
  std::vector<ExitStatus> exit_statuses;
  std::vector<std::string> see_also;  // "kestrel-harness(1)"
};

const Manual& KestrelManual();
const Manual& HarnessManual();

}  // namespace kestrel::command
