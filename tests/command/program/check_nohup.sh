#!/bin/sh
# check_nohup.sh PROGRAM: a program that was started to survive the end of its session does so.
set -u

lines=$(mktemp)
trap 'rm -f "$lines"' EXIT
trap '' HUP
"$1" watch --interval 100ms --count 20 >"$lines" &
until [ -s "$lines" ] || ! kill -0 $! 2>/dev/null; do
  sleep 0.1
done
kill -HUP $!
wait $!
count=$(wc -l <"$lines")
if [ "$count" -ne 20 ]; then
  echo "$count samples instead of 20" >&2
  exit 1
fi
