# shellcheck shell=dash disable=SC2034,SC2154,SC2164
# The cases of script/kernels. Sourced by /init inside the machine.
#
# A case about memory is a function that puts its process into a situation and ends in `forecast`.
# It runs twice: the process asks the forecast for its threshold T, and uses 90 % of it the first
# time, 115 % the second. The first must live; the second must be killed or refused. A case whose
# forecast is known to be off says so with `expect`.
#
# A case about processor time ends in `usage`.

groups=/sys/fs/cgroup
memory=$groups
[ "$hierarchy" = v2 ] || memory=$groups/memory

# The exit status of a case that the kernel lacks something for.
not_run=12

needs_file() { # FILE REASON
  [ -e "$1" ] || skip "$2"
}

needs_v2() {
  [ "$hierarchy" = v2 ] || skip "$1"
}

skip() {
  echo "$1" >/tmp/reason
  exit "$not_run"
}

expect() { # PERCENT FATES REASON
  [ "$1" != "$percent" ] || echo "$2" >/tmp/expected
  echo "$3" >/tmp/reason
}

# Groups

# Makes a group; its parents pass the memory controller down to it.
group() { # PATH
  [ "$hierarchy" != v2 ] || echo +memory >"$(dirname "$memory/$1")/cgroup.subtree_control"
  mkdir "$memory/$1"
}

# Limits a group's RAM, and the swap that it may use beyond that: what is to fail would otherwise
# fill the swap first. Version 1 limits the sum of the two.
limit() { # PATH MEBIBYTES [SWAP_MEBIBYTES|max]
  swap=${3:-0}
  if [ "$hierarchy" = v2 ]; then
    echo "$2M" >"$memory/$1/memory.max"
    [ "$swap" = max ] || echo "${swap}M" >"$memory/$1/memory.swap.max"
  else
    echo "$2M" >"$memory/$1/memory.limit_in_bytes"
    [ "$swap" = max ] || echo "$(($2 + swap))M" >"$memory/$1/memory.memsw.limit_in_bytes"
  fi
}

enter() { # PATH
  echo 0 >"$memory/$1/cgroup.procs"
}

# Runs a command in a group, in a process of its own.
within() { # PATH COMMAND...
  (
    enter "$1"
    shift
    "$@"
  )
}

# Memory

forecast() { # [PREPARATION...]
  exec allocation_probe "$percent" "$@"
}

write_file() { # PATH MEBIBYTES
  dd if=/dev/zero of="$1" bs=1M count="$2" 2>/dev/null
}

# Without huge pages: the kernel swaps many of them at once, and each counts as RAM and as swap
# until it is written.
swap_on() {
  swapon /dev/vdb
  huge_pages never
}

huge_pages() { # always|never
  echo "$1" >/sys/kernel/mm/transparent_hugepage/enabled
}

tune() { # SETTING VALUE, below /proc/sys/vm
  echo "$2" >"/proc/sys/vm/$1"
}

multi_generational_lru() { # y|n
  needs_file /sys/kernel/mm/lru_gen/enabled "no multi-generational LRU"
  echo "$1" >/sys/kernel/mm/lru_gen/enabled
}

# Plain limits

case_no_group() {
  forecast
}

case_own_limit() {
  group a
  limit a 128
  enter a
  forecast
}

case_parent_limit() {
  group a
  limit a 128
  group a/b
  enter a/b
  forecast
}

case_limit_six_levels_up() {
  group a
  limit a 128
  for path in a/b a/b/c a/b/c/d a/b/c/d/e a/b/c/d/e/f a/b/c/d/e/f/g; do
    group "$path"
  done
  enter "$path"
  forecast
}

# A path of more than 1,400 bytes, with the limit at its top.
case_long_path() {
  group a
  limit a 128
  name=$(printf '%0200d' 0)
  path=a
  for _ in 1 2 3 4 5 6 7; do
    path=$path/$name
    group "$path"
  done
  enter "$path"
  forecast
}

# The controllers act on the group of the process; its thread is in a group without them.
case_threaded() {
  needs_v2 "version 2 alone has threaded groups"
  group a
  limit a 128
  mkdir "$memory/a/b"
  echo threaded >"$memory/a/b/cgroup.type"
  enter a
  echo 0 >"$memory/a/b/cgroup.threads"
  forecast
}

# The group's own limit is not accounted for below it.
case_controller_not_passed_down() {
  needs_v2 "version 1 passes every controller down"
  group a
  limit a 128
  mkdir "$memory/a/b"
  enter a/b
  forecast
}

case_limit_above_machine() {
  group a
  limit a 4096
  enter a
  forecast
}

# The group is full of clean pages.
case_read_file() {
  write_file /disk/file 160
  sync
  echo 3 >/proc/sys/vm/drop_caches
  group a
  limit a 128
  enter a
  cat /disk/file >/dev/null
  forecast
}

# The group is full of pages that must be written first.
case_written_file() {
  group a
  limit a 128
  enter a
  write_file /disk/file 160
  forecast
}

case_tmpfs() {
  group a
  limit a 128
  enter a
  write_file /tmp/file 50
  forecast
}

case_shared_memory() {
  group a
  limit a 128
  enter a
  forecast share=50
}

case_locked_memory() {
  group a
  limit a 128
  enter a
  forecast lock=50
}

case_huge_page_pool() {
  echo 48 >/proc/sys/vm/nr_hugepages
  forecast
}

# Swap

case_swap_of_machine() {
  swap_on
  forecast
}

case_swap_unlimited() {
  swap_on
  group a
  limit a 128 max
  enter a
  forecast
}

case_swap_limit() {
  swap_on
  group a
  limit a 128 64
  enter a
  forecast
}

case_swap_limit_of_parent() {
  swap_on
  group a
  limit a 128 64
  group a/b
  limit a/b 128 max
  enter a/b
  forecast
}

# Files in tmpfs are not taken back, but they can be swapped.
case_tmpfs_and_swap() {
  swap_on
  group a
  limit a 128 64
  enter a
  write_file /tmp/file 50
  forecast
}

case_swap_forbidden() {
  swap_on
  group a
  limit a 128 0
  enter a
  forecast
}

# Nothing is swapped for a group without swappiness.
case_group_without_swappiness() {
  swap_on
  group a
  limit a 128 max
  if [ "$hierarchy" = v2 ]; then
    tune swappiness 0
  else
    echo 0 >"$memory/a/memory.swappiness"
  fi
  enter a
  forecast
}

# The same for the whole machine. The classic LRU then swaps a little at the very end, if at all,
# and kills with the swap nearly empty...
case_no_swappiness_classic_lru() {
  multi_generational_lru n
  swap_on
  tune swappiness 0
  expect 115 'lived killed refused' "how much the classic LRU swaps by then is not certain"
  forecast
}

# ...and the multi-generational one never swaps.
case_no_swappiness_multi_generational_lru() {
  multi_generational_lru y
  swap_on
  tune swappiness 0
  forecast
}

case_least_swappiness() {
  swap_on
  tune swappiness 1
  forecast
}

# Compression in front of the swap

zswap() { # Y|N
  needs_file /sys/module/zswap/parameters/enabled "no zswap"
  echo "$1" >/sys/module/zswap/parameters/enabled
}

needs_zswap_writeback() { # GROUP
  needs_file "$memory/$1/memory.zswap.writeback" "no memory.zswap.writeback"
}

case_zswap() {
  zswap Y
  swap_on
  group a
  limit a 128 max
  enter a
  forecast random=100
}

case_zswap_without_writeback() {
  zswap Y
  swap_on
  group a
  needs_zswap_writeback a
  limit a 128 max
  echo 0 >"$memory/a/memory.zswap.writeback"
  enter a
  forecast random=100
}

case_zswap_without_writeback_of_parent() {
  zswap Y
  swap_on
  group a
  needs_zswap_writeback a
  limit a 192 max
  echo 0 >"$memory/a/memory.zswap.writeback"
  group a/b
  limit a/b 128 max
  enter a/b
  forecast random=100
}

# Without zswap the setting does not keep pages from the swap.
case_writeback_setting_without_zswap() {
  zswap N
  swap_on
  group a
  needs_zswap_writeback a
  limit a 128 max
  echo 0 >"$memory/a/memory.zswap.writeback"
  enter a
  forecast random=100
}

# Strict overcommit

case_strict_ratio_50() {
  swap_on
  tune overcommit_ratio 50
  tune overcommit_memory 2
  forecast
}

case_strict_ratio_150() {
  swap_on
  tune overcommit_ratio 150
  tune overcommit_memory 2
  forecast
}

case_strict_ratio_300() {
  tune overcommit_ratio 300
  tune overcommit_memory 2
  forecast
}

# Files in ramfs take RAM that is not committed.
case_strict_ramfs() {
  mkdir -p /mount
  mount -t ramfs ramfs /mount
  write_file /mount/file 200
  tune overcommit_ratio 100
  tune overcommit_memory 2
  forecast
}

# The kernel keeps a part of the limit back for others, up to a 32nd of the addresses that the
# process has. The reserve is small, so the first process goes close to the threshold.
case_strict_reserve() {
  tune overcommit_ratio 50
  tune user_reserve_kbytes 65536
  tune overcommit_memory 2
  expect_near_threshold
  forecast reserve=65536
}

# And another part for those who may administer the machine.
case_strict_reserve_of_plain_user() {
  tune overcommit_ratio 50
  tune admin_reserve_kbytes 65536
  tune overcommit_memory 2
  expect_near_threshold
  exec /usr/bin/setpriv --reuid 65534 --clear-groups allocation_probe "$percent"
}

expect_near_threshold() {
  [ "$percent" != 90 ] || percent=98
  echo "$percent" >/tmp/percent
}

# Where the groups are mounted

# The whole hierarchy is hidden; another mount shows it elsewhere.
case_hidden_mount() {
  group a
  limit a 128
  enter a
  exec /usr/bin/unshare --mount sh -c "
    mkdir -p /mount &&
    mount --bind $memory /mount &&
    mount -t tmpfs tmpfs $groups &&
    exec allocation_probe $percent"
}

# An ancestor of the group lies over the usual place, and shows its own groups there.
case_bound_ancestor() {
  group a
  group a/b
  limit a/b 128
  enter a/b
  exec /usr/bin/unshare --mount sh -c "
    mount --bind $memory/a $memory &&
    exec allocation_probe $percent"
}

# A namespace of its own, with the machine's mount still in front of the one that it sees.
case_outer_mount_first() {
  group a
  group a/b
  limit a/b 128
  enter a/b
  type='cgroup2 cgroup2'
  [ "$hierarchy" = v2 ] || type='cgroup -o memory cgroup'
  exec /usr/bin/unshare --mount --cgroup sh -c "
    mkdir -p /mount &&
    mount -t $type /mount &&
    exec allocation_probe $percent"
}

# A runtime that mounts the container's part of the hierarchy, without a namespace.
case_bound_own_group() {
  group a
  limit a 128
  enter a
  exec /usr/bin/unshare --mount sh -c "
    mount --bind $memory/a $memory &&
    exec allocation_probe $percent"
}

# What a container sees: its own namespace, and its group as the top of the only mount.
case_container() {
  group a
  limit a 128
  enter a
  type='cgroup2 cgroup2'
  [ "$hierarchy" = v2 ] || type='cgroup -o memory cgroup'
  exec /usr/bin/unshare --mount --cgroup sh -c "
    umount $memory &&
    mount -t $type $memory &&
    exec allocation_probe $percent"
}

# Kernel memory

# The kernel then finds the files on the disk, and charges their inodes and names to the group that
# looks at them.
make_files() { # COUNT
  if [ ! -d /disk/files ]; then
    mkdir /disk/files
    cd /disk/files
    seq "$1" | xargs touch
    sync
    echo 3 >/proc/sys/vm/drop_caches
  fi
  cd /disk/files
}

# Open files keep their inodes and names, which the kernel counts as reclaimable.
case_open_files() {
  make_files 20000
  group a
  limit a 200
  ulimit -n 24000
  enter a
  forecast open=20000
}

# Closed files do not.
case_closed_files() {
  make_files 20000
  group a
  limit a 200
  within a ls -l >/dev/null
  enter a
  forecast
}

# Known limits of the forecast

# Pages that wait for a slow disk cannot be taken back in time, if the machine lets many wait.
case_written_file_on_slow_disk() {
  mkdir -p /mount
  mount -t ext4 /dev/vdc /mount
  tune dirty_background_ratio 80
  tune dirty_ratio 90
  group a
  limit a 128
  enter a
  write_file /mount/file 100
  expect 90 'lived killed' "the disk decides whether the pages are written in time"
  forecast
}

# With huge pages a small limit on swap may be reached long before it is full.
case_swap_limit_with_huge_pages() {
  swap_on
  huge_pages always
  group a
  limit a 128 64
  enter a
  expect 90 'lived killed' "huge pages count twice while they are swapped"
  forecast
}

# What zswap has compressed stays charged to the group, and is not written out before zswap's own
# limit is reached, which is a fifth of the machine's RAM.
case_zswap_of_compressible_pages() {
  zswap Y
  swap_on
  group a
  limit a 128 max
  enter a
  expect 90 killed "compressed pages count as RAM and as swap"
  forecast random=50
}

# Swap in RAM: what does not compress uses as much of it as before.
case_zram() {
  needs_file /sys/block/zram0 "no zram"
  echo 256M >/sys/block/zram0/disksize
  mkswap /dev/zram0 >/dev/null
  swapon /dev/zram0
  expect 90 killed "swap in RAM counts in full, and these pages do not compress"
  forecast random=100
}

# Page cache that another group protects is not taken back, whoever needs it.
case_memory_min_of_another_group() {
  needs_v2 "version 2 alone protects memory"
  write_file /disk/file 200
  sync
  echo 3 >/proc/sys/vm/drop_caches
  group b
  echo 300M >"$memory/b/memory.min"
  within b cat /disk/file >/dev/null
  expect 90 killed "the machine counts protected page cache as available"
  forecast
}

case_memory_low_of_another_group() {
  needs_v2 "version 2 alone protects memory"
  write_file /disk/file 200
  sync
  echo 3 >/proc/sys/vm/drop_caches
  group b
  echo 300M >"$memory/b/memory.low"
  within b cat /disk/file >/dev/null
  forecast
}

# The parent is full of what another group has in tmpfs, which can be swapped.
case_swappable_sibling() {
  needs_v2 "version 1 has no limit on swap alone"
  swap_on
  group a
  limit a 192 max
  group a/b
  within a/b write_file /tmp/file 100
  group a/c
  limit a/c 192 0
  enter a/c
  expect 115 lived "what siblings can swap is not counted"
  forecast
}

# Processor time. All of a machine with four processors is 100 %.

usage() { # EXPECTED PID
  echo "$1" >/tmp/expected
  sleep 1 # until the threads run
  exec cpu_usage_probe measure "$2" 2000
}

# Groups for processor time; version 1 has a hierarchy for each controller.
cpu_group() { # CONTROLLER
  if [ "$hierarchy" = v2 ]; then
    mkdir "$groups/a"
    echo "$groups/a"
  else
    mkdir "$groups/$1/a"
    echo "$groups/$1/a"
  fi
}

cpu_set_group() { # PROCESSORS
  directory=$(cpu_group cpuset)
  echo 0 >"$directory/cpuset.mems"
  echo "$1" >"$directory/cpuset.cpus"
  echo "$directory"
}

spin_in() { # DIRECTORY THREADS
  (
    echo 0 >"$1/cgroup.procs"
    exec cpu_usage_probe spin "$2"
  ) &
}

usage_one_thread() {
  cpu_usage_probe spin 1 &
  usage 25 $!
}

usage_four_threads() {
  cpu_usage_probe spin 4 &
  usage 100 $!
}

usage_processor_offline() {
  echo 0 >/sys/devices/system/cpu/cpu3/online
  cpu_usage_probe spin 1 &
  usage 33.3 $!
}

# A share of the machine, whatever part of it the process may use...
usage_cpuset() {
  spin_in "$(cpu_set_group 1)" 4
  usage 25 $!
}

# ...and whatever part the one that measures may use.
usage_from_within_cpuset() {
  cpu_usage_probe spin 1 &
  pid=$!
  echo 0 >"$(cpu_set_group 1)/cgroup.procs"
  usage 25 "$pid"
}

usage_cpu_max() {
  directory=$(cpu_group cpu)
  if [ "$hierarchy" = v2 ]; then
    echo '50000 100000' >"$directory/cpu.max"
  else
    echo 50000 >"$directory/cpu.cfs_quota_us"
  fi
  spin_in "$directory" 1
  usage 12.5 $!
}
