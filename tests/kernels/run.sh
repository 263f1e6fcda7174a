# shellcheck shell=dash disable=SC2034,SC2154
# Runs the cases of cases.sh. Sourced by /init, with the names of the cases in $cases.
#
# Writes a line for each: RESULT|case|T|at 90 %|at 115 %|verdict|reason. The verdict is "right",
# "WRONG" or "not run".

huge_page_use=$(sed 's/.*\[\(.*\)\].*/\1/' /sys/kernel/mm/transparent_hugepage/enabled)
settings=$(
  for file in /proc/sys/vm/overcommit_memory /proc/sys/vm/overcommit_ratio \
    /proc/sys/vm/swappiness /proc/sys/vm/user_reserve_kbytes /proc/sys/vm/admin_reserve_kbytes \
    /proc/sys/vm/dirty_background_ratio /proc/sys/vm/dirty_ratio \
    /proc/sys/vm/nr_hugepages /sys/kernel/mm/lru_gen/enabled \
    /sys/module/zswap/parameters/enabled /sys/devices/system/cpu/cpu3/online; do
    [ ! -e "$file" ] || echo "$file $(cat "$file")"
  done
)

# Undoes what a case did.
reset_machine() {
  for pid in $(pidof allocation_probe cpu_usage_probe); do
    kill -9 "$pid"
  done
  wait
  echo "$settings" | while read -r file value; do
    [ "$(cat "$file")" = "$value" ] || echo "$value" >"$file"
  done
  echo "$huge_page_use" >/sys/kernel/mm/transparent_hugepage/enabled
  awk '$2 == "/mount" {print $2}' /proc/mounts | while read -r mount; do
    umount "$mount"
  done
  rm -f /disk/file /tmp/file
  awk 'NR > 1 {print $1}' /proc/swaps | while read -r swap; do
    swapoff "$swap"
  done
  [ ! -e /sys/block/zram0 ] || echo 1 >/sys/block/zram0/reset
  for group in "$memory"/a "$memory"/b "$groups"/cpu/a "$groups"/cpuset/a; do
    [ ! -d "$group" ] || find "$group" -depth -type d -exec rmdir {} \;
  done
  sync
  echo 3 >/proc/sys/vm/drop_caches
}

result() { # CASE THRESHOLD LOW HIGH VERDICT REASON
  echo "RESULT|$1|$2|$3|$4|$5|$6"
}

reason() {
  cat /tmp/reason 2>/dev/null || true
}

# Sets $fate, and $verdict unless the fate is right. Calls are in the order of the columns.
attempt() { # CASE PERCENT FATES
  percent=$2
  rm -f /tmp/expected /tmp/percent /tmp/reason
  (
    set -e
    "case_$1"
  ) >/tmp/threshold 2>/tmp/errors
  case $? in
    0) fate=lived ;;
    10) fate=refused ;;
    "$not_run") fate='not run' ;;
    137) fate=killed ;;
    *) fate="not set up" ;;
  esac
  [ ! -e /tmp/expected ] || set -- "$1" "$2" "$(cat /tmp/expected)"
  case " $3 " in
    *" $fate "*) ;;
    *) verdict=WRONG ;;
  esac
  [ "$fate" != "not set up" ] || sed 's/^/MESSAGE /' /tmp/errors
  [ ! -e /tmp/percent ] || fate="$fate ($(cat /tmp/percent) %)"
  reset_machine
}

run_memory_case() { # CASE
  verdict=right
  attempt "$1" 90 lived
  if [ "$fate" = 'not run' ]; then
    result "$1" - - - "$fate" "$(reason)"
    return
  fi
  low=$fate
  threshold=$(awk '{printf "%d MiB", $1 / 1048576}' /tmp/threshold)
  attempt "$1" 115 'killed refused'
  result "$1" "${threshold:--}" "$low" "$fate" "$verdict" "$(reason)"
}

# A busy host delays the machine, so the usage need not be exact. A wrong count of processors would
# change it by a quarter or more.
run_usage_case() { # CASE
  rm -f /tmp/expected /tmp/reason
  (
    set -e
    "usage_$1"
  ) >/tmp/usage 2>/tmp/errors
  [ ! -s /tmp/errors ] || sed 's/^/MESSAGE /' /tmp/errors
  usage=$(cat /tmp/usage)
  expected=$(cat /tmp/expected)
  verdict=$(awk -v usage="$usage" -v expected="$expected" 'BEGIN {
    ratio = usage / expected
    print (ratio > 0.8 && ratio < 1.2 ? "right" : "WRONG")
  }')
  reset_machine
  result "usage_$1" "$usage %" "expected $expected %" - "$verdict" ""
}

# The proof that also runs outside of these machines.
run_proof_test() {
  verdict=WRONG
  if (cd /disk && memory_forecast_proof_test) >/tmp/proof 2>&1 && ! grep -q SKIPPED /tmp/proof; then
    verdict=right
  else
    sed 's/^/MESSAGE /' /tmp/proof
  fi
  reset_machine
  result memory_forecast_proof_test - - - "$verdict" ""
}

reset_machine
for case in $(echo "$cases" | tr , ' '); do
  echo "$(cut -d ' ' -f 1 /proc/uptime) s: $case"
  case $case in
    memory_forecast_proof_test) run_proof_test ;;
    usage_*) run_usage_case "${case#usage_}" ;;
    *) run_memory_case "$case" ;;
  esac
done
