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
  if [ "$(echo "$output" | tail -n 1)" != "$sentence" ]; then
    echo "no reason in: $output" >&2
    exit 1
  fi
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
lacking="-> kestrelcore needs a processor with AVX2; in a virtual machine, pass the host's processor \
through"
case "$model" in
  Nehalem) seen="no no no $lacking" ;;
  SandyBridge) seen="yes no yes $lacking" ;;
  Haswell,-xsave)
    seen="yes yes no -> the operating system or the hypervisor has switched AVX off (on Linux: noxsave)"
    ;;
esac
explained=$(echo "$output" | sed -n '
  s/^  AVX \(.*\), AVX2 \(.*\) (CPUID)$/\1 \2/p
  s/^  the operating system saves the AVX registers: \(.*\) (XGETBV)$/\1/p
  s/^  \(-> \(kestrelcore needs\|the operating system or\).*\)$/\1/p' | tr '\n' ' ')
if [ "$explained" != "$seen " ]; then
  echo "'$explained' instead of '$seen ' in: $output" >&2
  exit 1
fi
