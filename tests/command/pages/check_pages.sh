#!/bin/bash
# check_pages.sh PAGES HARNESS: the man pages that the program PAGES writes are as <page>.expected and
# without warnings, and each shell completes by the file for it. HARNESS is the program, whose help has
# the same options as its page.
set -u

pages=$1
harness=$2
folder=$(mktemp -d)
socket=kestrel-zsh-$$
trap 'tmux -L "$socket" kill-server 2>/dev/null; rm -r "$folder"' EXIT

fail() {
  echo "$1" >&2
  exit 1
}

errors=$("$pages" 2>&1)
status=$?
[ "$status $errors" = "2 usage: kestrel-pages FOLDER" ] || fail "without a folder: $status $errors"
errors=$("$pages" "$folder" more 2>&1)
status=$?
[ "$status $errors" = "2 usage: kestrel-pages FOLDER" ] || fail "with more: $status $errors"
mkdir "$folder/half"
ln -s /dev/full "$folder/half/kestrel-harness.fish"
errors=$("$pages" "$folder/half" 2>&1)
status=$?
[ "$status $errors" = "1 kestrel-pages: '$folder/half/kestrel-harness.fish' could not be written" ] ||
  fail "with a file that cannot be written: $status $errors"
"$pages" "$folder" || fail "it ends with $?"
files=$(cd "$folder" && LC_ALL=C && echo *)
[ "$files" = "_kestrel _kestrel-harness half kestrel-harness.1 kestrel-harness.bash \
kestrel-harness.fish kestrel.1 kestrel.bash kestrel.fish" ] || fail "other files: $files"

for program in kestrel kestrel-harness; do
  difference=$(sed 's/"kestrelcore [0-9.]*"/"kestrelcore VERSION"/' "$folder/$program.1" |
    diff "$(dirname "$0")/$program.1.expected" -)
  [ -z "$difference" ] || fail "$program.1: $difference"
  warnings=$(man --warnings -E UTF-8 -l -Tutf8 -Z "$folder/$program.1" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "$program.1: $warnings"
  MANWIDTH=80 man -E UTF-8 -l "$folder/$program.1" | grep -q "$program  *- " ||
    fail "$program.1 has no name line"
done

for option in $("$harness" --help | grep -o -- '--[a-z_-]*'); do
  for file in kestrel-harness.bash _kestrel-harness; do
    grep -q -e "$option" "$folder/$file" || fail "$file lacks $option"
  done
  grep -q -e "-l ${option#--} " "$folder/kestrel-harness.fish" || fail "fish lacks $option"
done

# bash: what the words of the line, the last of them unfinished, are completed to.
in_bash() {
  # shellcheck disable=SC2016 # the inner shell expands these
  bash --norc -c '
    . "$1"
    shift
    compopt() { :; }  # only within a completion that the shell itself began
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    "_${1//-/_}"
    echo "${COMPREPLY[*]}"' bash "$folder/$1.bash" "$@"
}
expect() {
  [ "$1" = "$2" ] || fail "'$1' instead of '$2'"
}
expect "$(in_bash kestrel su)" survey
expect "$(in_bash kestrel survey --format j)" json
expect "$(in_bash kestrel survey --format = pro)" prometheus
expect "$(in_bash kestrel survey --f)" --format
expect "$(in_bash kestrel fits --d)" --device
expect "$(in_bash kestrel fits --device '')" ""
in_bash kestrel watch "$$" | grep -q -w "$$" || fail "bash does not complete processes"
expect "$(in_bash kestrel-harness --cpu)" --cpu-test
in_bash kestrel-harness -p "$$" | grep -q -w "$$" || fail "bash does not complete -p"

# An interactive bash, with a key. It leaves the user's history alone.
# shellcheck disable=SC2016
typed=$(printf '%s\n' ". '$folder/kestrel.bash'" 'kestrel() { echo "run: $*"; }' \
  $'kestrel expl\t' exit | TERM=dumb HISTFILE='' bash --norc -i 2>/dev/null)
case "$typed" in
  *"run: explain"*) ;;
  *) fail "interactive: $typed" ;;
esac

in_fish() {
  fish --no-config -c "source '$folder/kestrel.fish'; source '$folder/kestrel-harness.fish'
    complete -C '$1'" | cut -f 1 | tr '\n' ' '
}
expect "$(in_fish 'kestrel su')" "survey "
expect "$(in_fish 'kestrel survey --format j')" "json "
expect "$(in_fish 'kestrel-harness --cpu')" "--cpu-test "

expect "$(timeout 60 zsh -n "$folder/_kestrel" 2>&1)" ""
expect "$(timeout 60 zsh -n "$folder/_kestrel-harness" 2>&1)" ""

# zsh completes in its line editor alone, so it is given a terminal.
tmux -L "$socket" -f /dev/null new-session -d -x 80 -y 24 zsh -f
tmux -L "$socket" send-keys \
  "fpath=('$folder' \$fpath); autoload -Uz compinit; compinit -u -D; clear; echo ready" Enter
await() {
  tries=0
  while ! tmux -L "$socket" capture-pane -p | grep -q "$1"; do
    tries=$((tries + 1))
    [ "$tries" -le 300 ] || fail "zsh: no '$1' in $(tmux -L "$socket" capture-pane -p)"
    sleep 0.1
  done
}
await '^ready'
tmux -L "$socket" send-keys 'kestrel expl' Tab
await 'kestrel explain'
tmux -L "$socket" send-keys C-u 'kestrel survey --format j' Tab
await 'kestrel survey --format json'
tmux -L "$socket" send-keys C-u 'kestrel-harness --cpu' Tab
await 'kestrel-harness --cpu-test'
