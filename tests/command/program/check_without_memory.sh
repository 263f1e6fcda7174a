#!/bin/sh
# check_without_memory.sh PROGRAM LIBRARY: a program that gets no memory at all says so and ends with
# the status that its command has for a failure. LIBRARY makes every allocation fail.
set -u

ends_with() {
  expected=$1
  shift
  errors=$(LD_PRELOAD=$library ATTACK_NO_MEMORY=0+ "$kestrel" "$@" 2>&1)
  status=$?
  if [ "$status $errors" != "$expected kestrel: out of memory" ]; then
    echo "kestrel $*: status $status instead of $expected: $errors" >&2
    exit 1
  fi
}

kestrel=$1
library=$2
ends_with 70
ends_with 70 survey
ends_with 70 watch 1
ends_with 2 fits
ends_with 2 fits 1
