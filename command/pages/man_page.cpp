#include <algorithm>

#include "command/pages/pages.h"

namespace kestrel::command {

namespace {

// A text for man(7): a line that begins with a dot or a quote would be a request.
std::string Escaped(const std::string& text) {
  std::string escaped = text.find_first_of(".'") == 0 ? "\\&" : "";
  for (const char letter : text) {
    if (letter == '\\') {
      escaped += "\\e";
    } else {
      escaped += letter == '-' ? "\\-" : std::string(1, letter);
    }
  }
  return escaped;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fP"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fP"; }

std::string InCapitals(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  return text;
}

std::string Paragraphs(const std::vector<std::string>& paragraphs) {
  std::string text;
  for (const std::string& paragraph : paragraphs) {
    text += (text.empty() ? "" : ".PP\n") + Escaped(paragraph) + "\n";
  }
  return text;
}

// Each with its name, its value and what it is.
std::string ParameterList(const std::vector<Parameter>& parameters) {
  std::string text;
  for (const Parameter& parameter : parameters) {
    const bool argument = parameter.name == parameter.value;
    text += ".TP\n";
    text += parameter.letter.empty() ? "" : Bold("-" + parameter.letter) + ", ";
    text += argument ? Italic(parameter.name) : Bold(parameter.name);
    text += parameter.value.empty() || argument ? "" : " " + Italic(parameter.value);
    text += "\n" + Escaped(parameter.help) + ".";
    std::string values;
    for (const std::string& value : parameter.values) {
      values += (values.empty() ? "" : ", ") + Bold(value);
    }
    text += values.empty() ? "" : " One of " + values + ".";
    text += parameter.standard.empty() ? "" : " By default " + Bold(parameter.standard) + ".";
    text += "\n";
  }
  return text;
}

std::string SubcommandText(const Manual& manual, const Subcommand& subcommand) {
  std::string text = ".SS " + Escaped(manual.program + " " + subcommand.name) + " [OPTIONS]";
  for (const Parameter& argument : subcommand.arguments) {
    text += " " + Escaped(argument.name == "SIZE"  ? argument.name
                          : argument.name == "PID" ? "[PID...]"
                                                   : "[" + argument.name + "]");
  }
  return text + "\n" + Paragraphs(subcommand.description) + ParameterList(subcommand.arguments) +
         ParameterList(subcommand.options);
}

std::string Examples(const Manual& manual) {
  std::string text;
  for (const Subcommand& subcommand : manual.subcommands) {
    text += ".TP\n" + Bold(subcommand.example) + "\n" + Escaped(subcommand.example_meaning) + ".\n";
  }
  return text.empty() ? "" : ".SH EXAMPLES\n" + text;
}

std::string ExitStatuses(const Manual& manual) {
  std::string text = ".SH EXIT STATUS\n";
  for (const ExitStatus& status : manual.exit_statuses) {
    text += ".TP\n" + Bold(std::to_string(status.number)) + "\n" + Escaped(status.meaning) + "\n";
  }
  return text;
}

}  // namespace

std::string ManPage(const Manual& manual, const std::string& version) {
  std::string text = ".TH " + InCapitals(Escaped(manual.program)) + R"( 1 "" "kestrelcore )" +
                     version + "\" \"User Commands\"\n";
  text += ".SH NAME\n" + Escaped(manual.program) + " \\- " + Escaped(manual.summary) + "\n";
  text += ".SH SYNOPSIS\n" + Bold(manual.program) + " [" + Italic("OPTIONS") + "]";
  text += manual.subcommands.empty() ? "\n" : " " + Italic("SUBCOMMAND") + " ...\n";
  text += ".SH DESCRIPTION\n" + Paragraphs(manual.description);
  text += ".SH OPTIONS\n" + ParameterList(manual.options);
  text += manual.subcommands.empty() ? "" : ".SH SUBCOMMANDS\n";
  for (const Subcommand& subcommand : manual.subcommands) {
    text += SubcommandText(manual, subcommand);
  }
  text += ExitStatuses(manual) + Examples(manual) + ".SH SEE ALSO\n";
  for (const std::string& page : manual.see_also) {
    text += Bold(page.substr(0, page.find('('))) + page.substr(page.find('(')) + "\n";
  }
  return text;
}

}  // namespace kestrel::command
