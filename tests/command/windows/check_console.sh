#!/bin/sh
# check_console.sh COMMAND: the code page of a console is UTF-8 for the live table alone. Wine
# opens a console only on a terminal. Waits for the lines for 60 seconds at most.
set -u

socket=kestrel-console-$$
export SHELL=/bin/sh # that of the user may be another language, or none
trap 'tmux -L "$socket" kill-server 2>/dev/null' EXIT
tmux -L "$socket" -f /dev/null new-session -d -x 80 -y 12 "$1; cat"
tries=0
until tmux -L "$socket" capture-pane -p | grep -q '^after 850$'; do
  tries=$((tries + 1))
  if [ "$tries" -gt 600 ]; then
    echo "the former code page is not set again:" >&2
    tmux -L "$socket" capture-pane -p >&2
    exit 1
  fi
  sleep 0.1
done
if ! tmux -L "$socket" capture-pane -p | grep -q '^within 65001 Unicode$'; then
  tmux -L "$socket" capture-pane -p >&2
  exit 1
fi
