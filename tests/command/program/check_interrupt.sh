#!/bin/sh
# check_interrupt.sh PROGRAM: a request to end kestrel watch is followed at once, however long its
# interval is, and several processes are watched at the same time.
set -u

sampled=$("$1" watch $$ $PPID --interval 10ms --count 1) || exit 1
case "$sampled" in
  *"; PID $$ "*" %"*"; PID $PPID "*" %"*) ;;
  *)
    echo "not both processes in: $sampled" >&2
    exit 1
    ;;
esac

"$1" watch $$ --interval 60m &
watch=$!
trap 'kill -KILL $watch 2>/dev/null' EXIT
# Until it catches signal 15, for 30 seconds at most.
tries=0
while [ "$tries" -lt 300 ] && ! grep -q 'SigCgt:.*[4567cdef]...$' "/proc/$watch/status"; do
  tries=$((tries + 1))
  sleep 0.1
done
kill -TERM $watch
wait $watch
status=$?
[ "$status" -eq 0 ] || echo "status $status after a request to end" >&2
exit "$status"
