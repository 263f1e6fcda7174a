#!/bin/sh
# check_watch.sh PROGRAM: the live table in a terminal, at 80 and at 40 columns, while a process
# ends, while it is stopped, and after Ctrl-C; and a terminal on which there is none. Waits for what
# it looks for, for 30 seconds at most.
set -u

kestrel=$1
socket=kestrel-watch-$$
export LC_ALL=C.UTF-8
export SHELL=/bin/sh # that of the user may be another language, or none

tmux_do() {
  tmux -L "$socket" -f /dev/null "$@"
}

finish() {
  tmux_do kill-server 2>/dev/null
  kill "$first" "$second" 2>/dev/null
}

# Waits until the screen has a line that matches $1, or fails.
await() {
  tries=0
  while ! tmux_do capture-pane -p | grep -q "$1"; do
    tries=$((tries + 1))
    if [ "$tries" -gt 300 ]; then
      echo "'$1' never came:" >&2
      tmux_do capture-pane -p >&2
      exit 1
    fi
    sleep 0.1
  done
}

# The terminal shows the table, without a cursor, if $1 is 1, and the shell with one if it is 0.
expect_table() {
  state=$(tmux_do display-message -p '#{alternate_on} #{cursor_flag}')
  if [ "$state" != "$1 $((1 - $1))" ]; then
    echo "other screen and cursor: $state" >&2
    exit 1
  fi
}

sleep 600 &
first=$!
sleep 600 &
second=$!
trap finish EXIT

tmux_do new-session -d -x 80 -y 12
tmux_do send-keys "clear; '$kestrel' watch $first $second --interval 100ms; echo status \$?" Enter
await "^PID $first  *0.0 %  .*B"
# Graphs fill 44 columns of the 80 after 44 samples.
await '^available RAM  *[0-9.]* .iB  .\{44\}$'
tmux_do capture-pane -p

tmux_do resize-window -x 40 -y 12
await '^available RAM  *[0-9.]* .iB  .\{4\}$'
tmux_do capture-pane -p
if tmux_do capture-pane -p | grep -q '.\{41\}'; then
  echo "a line is wider than 40 columns" >&2
  exit 1
fi

kill "$first"
await "^PID $first  *ended$"
expect_table 1
tmux_do send-keys C-z
await Stopped
expect_table 0
tmux_do send-keys "clear; fg; echo status \$?" Enter
await "^PID $first  *ended$"
expect_table 1
tmux_do send-keys C-c
await '^status 0$'
await "^PID $second "
expect_table 0
tmux_do capture-pane -p

for terminal in dumb ""; do
  tmux_do send-keys "clear; TERM=$terminal '$kestrel' watch --interval 10ms --count 2; echo \"$terminal ends\"" \
    Enter
  await "^$terminal ends$"
  if [ "$(tmux_do capture-pane -p | grep -c '^RAM .* available')" -ne 2 ]; then
    echo "with TERM=$terminal there are not two lines:" >&2
    tmux_do capture-pane -p >&2
    exit 1
  fi
done
