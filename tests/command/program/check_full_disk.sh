#!/bin/sh
# Output that cannot be written is an error status: a full disk, and a reader that has gone.
set -u

fail() {
  echo "$1" >&2
  exit 1
}

kestrel=$1
errors=$("$kestrel" --help 2>&1 >/dev/full)
[ $? -eq 74 ] || fail "a full disk gives another status"
[ "$errors" = "kestrel: the output could not be written: No space left on device" ] ||
  fail "a full disk gives: $errors"

errors=$("$kestrel" record /dev/full 2>&1)
[ $? -eq 74 ] || fail "a full disk gives kestrel record another status"
[ "$errors" = "kestrel record: '/dev/full' could not be written: No space left on device" ] ||
  fail "a full disk gives kestrel record: $errors"

# The pipe has lost its only reader, descriptor 3, before the program writes to it.
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
mkfifo "$folder/pipe"
exec 3<>"$folder/pipe"
exec 4>"$folder/pipe" 3>&-
"$kestrel" --help >&4 2>/dev/null
status=$?
[ "$status" = 74 ] || fail "a closed pipe gives the status $status"
