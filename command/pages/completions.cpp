#include "command/pages/pages.h"

namespace kestrel::command {

namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() ? "" : " ") + word;
  }
  return text;
}

std::string OptionNames(const std::vector<Parameter>& options) {
  std::vector<std::string> names;
  for (const Parameter& option : options) {
    names.push_back(option.name);
    if (!option.letter.empty()) {
      names.push_back("-" + option.letter);
    }
  }
  return Joined(names);
}

std::string SubcommandNames(const Manual& manual) {
  std::vector<std::string> names;
  for (const Subcommand& subcommand : manual.subcommands) {
    names.push_back(subcommand.name);
  }
  return Joined(names);
}

// "kestrel-harness" as the name of a function.
std::string FunctionName(const Manual& manual) {
  std::string name = "_" + manual.program;
  for (char& letter : name) {
    letter = letter == '-' ? '_' : letter;
  }
  return name;
}

// In single quotes, for each of the shells. The texts of the manual have no backslash.
std::string Quoted(const std::string& text, const char* quote) {
  std::string quoted = "'";
  for (const char letter : text) {
    quoted += letter == '\'' ? quote : std::string(1, letter);
  }
  return quoted + "'";
}

std::string BashValue(const std::string& command, const Parameter& option) {
  const std::string letter =
      option.letter.empty() ? "" : " | '" + command + " -" + option.letter + "'";
  const std::string words = option.value == "PID" ? "$(ps -e -o pid=)" : Joined(option.values);
  return "    '" + command + " " + option.name + "'" + letter + ") words=\"" + words + "\" ;;\n";
}

// What the shell offers for the values of options: words, or none where any value will do.
std::string BashValues(const std::string& command, const std::vector<Parameter>& options) {
  std::string text;
  for (const Parameter& option : options) {
    text += option.value.empty() ? "" : BashValue(command, option);
  }
  return text;
}

std::string BashArguments(const Subcommand& subcommand) {
  const std::string& argument =
      subcommand.arguments.empty() ? std::string() : subcommand.arguments.front().name;
  std::string text = "    " + subcommand.name + "\\ *)\n";
  text += "      words=\"" + OptionNames(subcommand.options);
  text += argument == "PID" ? " $(ps -e -o pid=)\"\n" : "\"\n";
  text += argument == "FILE" ? "      compopt -o default\n" : "";
  return text + "      ;;\n";
}

// The text of an option in the arguments of zsh's _arguments.
std::string ZshOption(const Parameter& option) {
  std::string help = option.help;
  for (std::size_t i = 0; (i = help.find_first_of("[]:", i)) != std::string::npos; i += 2) {
    help.insert(i, "\\");
  }
  std::string value;
  if (!option.value.empty()) {
    value = ":" + option.value + ":" +
            (option.values.empty() ? " " : "(" + Joined(option.values) + ")");
  }
  std::string text = " \\\n    " + Quoted(option.name + "[" + help + "]" + value, "'\\''");
  if (!option.letter.empty()) {
    text += " \\\n    " + Quoted("-" + option.letter + "[" + help + "]" + value, "'\\''");
  }
  return text;
}

std::string ZshArgument(const Parameter& argument) {
  if (argument.name == "FILE") {
    return " \\\n    '1:FILE:_files'";
  }
  return argument.name == "PID" ? " \\\n    '*:PID:_pids'" : " \\\n    '1:" + argument.name + ": '";
}

std::string ZshSubcommand(const Subcommand& subcommand) {
  std::string text = "  (" + subcommand.name + ") _arguments";
  for (const Parameter& option : subcommand.options) {
    text += ZshOption(option);
  }
  for (const Parameter& argument : subcommand.arguments) {
    text += ZshArgument(argument);
  }
  return text + " ;;\n";
}

std::string FishOption(const std::string& head, const Parameter& option) {
  std::string text = head + " -l " + option.name.substr(2);
  text += option.letter.empty() ? "" : " -s " + option.letter;
  if (!option.value.empty()) {
    text += " -x";
    text += option.values.empty() ? "" : " -a '" + Joined(option.values) + "'";
  }
  return text + " -d " + Quoted(option.help, "\\'") + "\n";
}

std::string FishSubcommand(const std::string& head, const Subcommand& subcommand) {
  const std::string inside = head + " -n '__fish_seen_subcommand_from " + subcommand.name + "'";
  std::string text = head + " -n __fish_use_subcommand -a " + subcommand.name + " -d " +
                     Quoted(subcommand.summary, "\\'") + "\n";
  for (const Parameter& option : subcommand.options) {
    text += FishOption(inside, option);
  }
  for (const Parameter& argument : subcommand.arguments) {
    if (argument.name == "PID") {
      text += inside + " -a '(__fish_complete_pids)'\n";
    } else if (argument.name == "FILE") {
      text += inside + " -F\n";
    }
  }
  return text;
}

}  // namespace

std::string BashCompletion(const Manual& manual) {
  const std::string name = FunctionName(manual);
  const bool has_subcommands = !manual.subcommands.empty();
  std::string text = "# bash completion of " + manual.program + "\n\n" + name + "() {\n";
  text += "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n";
  text += "  local words=\n";
  text += "  [ \"$current\" = = ] && current=\n";
  text += "  [ \"$previous\" = = ] && previous=${COMP_WORDS[COMP_CWORD - 2]}\n";
  text += has_subcommands ? "  local subcommand=\n  [ \"$COMP_CWORD\" -gt 1 ] && "
                            "subcommand=${COMP_WORDS[1]}\n"
                          : "  local subcommand=-\n";
  text += "  case \"$subcommand $previous\" in\n";
  text += BashValues("-", has_subcommands ? std::vector<Parameter>() : manual.options);
  for (const Subcommand& subcommand : manual.subcommands) {
    text += BashValues(subcommand.name, subcommand.options);
  }
  for (const Subcommand& subcommand : manual.subcommands) {
    text += BashArguments(subcommand);
  }
  text += "    *) words=\"" + Joined({SubcommandNames(manual), OptionNames(manual.options)}) +
          "\" ;;\n  esac\n";
  text += "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n}\n";
  return text + "complete -F " + name + " " + manual.program + "\n";
}

std::string ZshCompletion(const Manual& manual) {
  const std::string name = FunctionName(manual);
  std::string text = "#compdef " + manual.program + "\n\n" + name + "() {\n";
  text += "  local state\n  local -a subcommands\n  _arguments -C";
  for (const Parameter& option : manual.options) {
    text += ZshOption(option);
  }
  if (manual.subcommands.empty()) {
    return text + "\n}\n\n" + name + " \"$@\"\n";
  }
  text += " \\\n    '1:subcommand:->subcommand' \\\n    '*::argument:->argument'\n";
  text += "  if [[ $state == subcommand ]]; then\n    subcommands=(";
  for (const Subcommand& subcommand : manual.subcommands) {
    text += "\n      " + Quoted(subcommand.name + ":" + subcommand.summary, "'\\''");
  }
  text += ")\n    _describe subcommand subcommands\n    return\n  fi\n  case $words[1] in\n";
  for (const Subcommand& subcommand : manual.subcommands) {
    text += ZshSubcommand(subcommand);
  }
  return text + "  esac\n}\n\n" + name + " \"$@\"\n";
}

std::string FishCompletion(const Manual& manual) {
  const std::string head = "complete -c " + manual.program;
  std::string text = "# fish completion of " + manual.program + "\n\n" + head + " -f\n";
  for (const Parameter& option : manual.options) {
    text +=
        FishOption(manual.subcommands.empty() ? head : head + " -n __fish_use_subcommand", option);
  }
  for (const Subcommand& subcommand : manual.subcommands) {
    text += FishSubcommand(head, subcommand);
  }
  return text;
}

}  // namespace kestrel::command
