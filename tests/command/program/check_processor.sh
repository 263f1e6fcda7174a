#!/bin/sh
# check_processor.sh EMULATOR MODEL PROGRAM: what needs AVX2 says so, the rest does its work.
set -u

emulator=$1
model=$2
kestrel=$3

run() {
  expected=$1
  shift
  output=$("$emulator" -cpu "$model" "$kestrel" "$@" 2>&1)
  status=$?
  if [ "$status" -ne "$expected" ]; then
    echo "kestrel $*: status $status instead of $expected: $output" >&2
    exit 1
  fi
}

# The emulator may have written warnings before it.
says_why() {
  case "$output" in
    *"$sentence") ;;
    *)
      echo "no reason in: $output" >&2
      exit 1
      ;;
  esac
}

sentence="kestrel: this processor lacks AVX2, or the operating system has not enabled it; \
'kestrel explain' says more"
run 70 survey
says_why
run 2 fits 1
says_why
run 70 watch --count 1
says_why
run 0 --help
run 64 survey --format xml
run 0 record
case "$output" in
  *"# Recorded by kestrel "*"device = []"*) ;;
  *)
    echo "no machine file in: $output" >&2
    exit 1
    ;;
esac
run 0 explain
case "$output" in
  *"-> kestrelcore needs a processor with AVX2"* | *"-> the operating system or the hypervisor"*) ;;
  *)
    echo "no explanation in: $output" >&2
    exit 1
    ;;
esac
