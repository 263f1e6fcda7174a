#!/bin/sh
# check_full_pipe.sh PROGRAM: a request to end that comes while a line waits for a slow reader ends
# the program after that line, with status 0. Waits for what it looks for, for 30 seconds at most.
set -u

fail() {
  echo "$1" >&2
  kill -KILL "$watch" 2>/dev/null
  exit 1
}

# Waits until the file $2 has a line that matches $3, or fails with the text $1.
await() {
  tries=0
  until grep -qs "$3" "$2"; do
    [ -e "$2" ] || fail "the program has ended: $1"
    tries=$((tries + 1))
    [ "$tries" -le 300 ] || fail "$1"
    sleep 0.1
  done
}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkfifo "$folder/pipe"
exec 3<>"$folder/pipe"
# In bytes: what the pipe holds, which is less for a user who has many.
full=$(LC_ALL=C dd if=/dev/zero of="$folder/pipe" oflag=nonblock bs=4096 2>&1 |
  sed -n 's/ bytes.*//p')

"$1" watch --interval 1ms >&3 &
watch=$!
await "the program never waits for the reader" "/proc/$watch/wchan" pipe_write
kill -TERM "$watch"
await "the signal is never taken" "/proc/$watch/status" '^ShdPnd:[[:space:]]*0*$'
head -c "$full" <&3 >/dev/null
wait "$watch"
status=$?
[ "$status" -eq 0 ] || fail "status $status"
read -r line <&3
case $line in
  RAM*available*) ;;
  *) fail "no line, but: $line" ;;
esac
