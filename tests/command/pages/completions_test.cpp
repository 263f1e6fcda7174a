#include <gtest/gtest.h>

#include "command/pages/pages.h"
#include "tests/command/pages/example_manual.h"

// What each shell does with these texts is checked by check_pages.sh.

namespace kestrel::tests {
namespace {

using command::BashCompletion;
using command::FishCompletion;
using command::ZshCompletion;

TEST(BashCompletionTest, OffersSubcommandsTheirOptionsAndValues) {
  EXPECT_EQ(BashCompletion(ExampleManual()), R"text(# bash completion of tool-zap

_tool_zap() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local words=
  [ "$current" = = ] && current=
  [ "$previous" = = ] && previous=${COMP_WORDS[COMP_CWORD - 2]}
  local subcommand=
  [ "$COMP_CWORD" -gt 1 ] && subcommand=${COMP_WORDS[1]}
  case "$subcommand $previous" in
    'open --level' | 'open -l') words="low high" ;;
    'wait --parent' | 'wait -p') words="$(ps -e -o pid=)" ;;
    'grow --time') words="" ;;
    open\ *)
      words="--level -l --help -h"
      compopt -o default
      ;;
    wait\ *)
      words="--parent -p $(ps -e -o pid=)"
      ;;
    grow\ *)
      words="--time"
      ;;
    *) words="open wait grow --help -h --version" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _tool_zap tool-zap
)text");
}

TEST(BashCompletionTest, OffersOptionsWhereThereAreNoSubcommands) {
  EXPECT_EQ(BashCompletion(PlainManual()), R"text(# bash completion of plain

_plain() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local words=
  [ "$current" = = ] && current=
  [ "$previous" = = ] && previous=${COMP_WORDS[COMP_CWORD - 2]}
  local subcommand=-
  case "$subcommand $previous" in
    '- --pid' | '- -p') words="$(ps -e -o pid=)" ;;
    *) words="--pid -p --test" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _plain plain
)text");
}

TEST(ZshCompletionTest, OffersSubcommandsTheirOptionsAndArguments) {
  EXPECT_EQ(ZshCompletion(ExampleManual()), R"text(#compdef tool-zap

_tool_zap() {
  local state
  local -a subcommands
  _arguments -C \
    '--help[Print help]' \
    '-h[Print help]' \
    '--version[Print the version]' \
    '1:subcommand:->subcommand' \
    '*::argument:->argument'
  if [[ $state == subcommand ]]; then
    subcommands=(
      'open:Open a tool'\''s box'
      'wait:Wait for processes'
      'grow:Grow')
    _describe subcommand subcommands
    return
  fi
  case $words[1] in
  (open) _arguments \
    '--level[\[X\]\: it'\''s its level]:LEVEL:(low high)' \
    '-l[\[X\]\: it'\''s its level]:LEVEL:(low high)' \
    '--help[Print help]' \
    '-h[Print help]' \
    '1:FILE:_files' ;;
  (wait) _arguments \
    '--parent[Its parent]:PID: ' \
    '-p[Its parent]:PID: ' \
    '*:PID:_pids' ;;
  (grow) _arguments \
    '--time[How long]:TIME: ' \
    '1:SIZE: ' ;;
  esac
}

_tool_zap "$@"
)text");
}

TEST(ZshCompletionTest, OffersOptionsWhereThereAreNoSubcommands) {
  EXPECT_EQ(ZshCompletion(PlainManual()), R"text(#compdef plain

_plain() {
  local state
  local -a subcommands
  _arguments -C \
    '--pid[Process]:PID: ' \
    '-p[Process]:PID: ' \
    '--test[Test]'
}

_plain "$@"
)text");
}

TEST(FishCompletionTest, OffersSubcommandsTheirOptionsAndArguments) {
  EXPECT_EQ(FishCompletion(ExampleManual()), R"text(# fish completion of tool-zap

complete -c tool-zap -f
complete -c tool-zap -n __fish_use_subcommand -l help -s h -d 'Print help'
complete -c tool-zap -n __fish_use_subcommand -l version -d 'Print the version'
complete -c tool-zap -n __fish_use_subcommand -a open -d 'Open a tool\'s box'
complete -c tool-zap -n '__fish_seen_subcommand_from open' -l level -s l -x -a 'low high' -d '[X]: it\'s its level'
complete -c tool-zap -n '__fish_seen_subcommand_from open' -l help -s h -d 'Print help'
complete -c tool-zap -n '__fish_seen_subcommand_from open' -F
complete -c tool-zap -n __fish_use_subcommand -a wait -d 'Wait for processes'
complete -c tool-zap -n '__fish_seen_subcommand_from wait' -l parent -s p -x -d 'Its parent'
complete -c tool-zap -n '__fish_seen_subcommand_from wait' -a '(__fish_complete_pids)'
complete -c tool-zap -n __fish_use_subcommand -a grow -d 'Grow'
complete -c tool-zap -n '__fish_seen_subcommand_from grow' -l time -x -d 'How long'
)text");
}

TEST(FishCompletionTest, OffersOptionsWhereThereAreNoSubcommands) {
  EXPECT_EQ(FishCompletion(PlainManual()), R"text(# fish completion of plain

complete -c plain -f
complete -c plain -l pid -s p -x -d 'Process'
complete -c plain -l test -d 'Test'
)text");
}

}  // namespace
}  // namespace kestrel::tests
