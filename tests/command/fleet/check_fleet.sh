#!/bin/bash
# check_fleet.sh BUILD TOOLS: runs what is in packaging/fleet under the systems that it is for.
# BUILD is the build tree, TOOLS the folder of promtool and prometheus-node-exporter.
set -euo pipefail

build=$1
tools=$2
source=$(cd "$(dirname "$0")/../../.." && pwd)
fleet=$source/packaging/fleet
work=$(mktemp -d)
exporter=
finish() {
  [ -z "$exporter" ] || kill "$exporter" 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
fail() {
  echo "$1" >&2
  exit 1
}

export LC_ALL=C.UTF-8 # Ansible refuses locales of other encodings, and those that are not installed
export PATH=$build/bin:$PATH
export KESTREL_SIM_MACHINE=$source/simulator/machines/apu-and-card.toml
export LD_LIBRARY_PATH=$build/simulator/runtime/5:$build/simulator/runtime/6:$build/simulator/runtime/7

echo "== promtool"
for machine in "$source"/simulator/machines/*.toml; do
  KESTREL_SIM_MACHINE=$machine kestrel survey --format prometheus >"$work/metrics" ||
    [ $? -eq 70 ] || fail "kestrel survey fails on $machine"
  findings=$("$tools/promtool" check metrics <"$work/metrics" 2>&1) || fail "$machine: $findings"
  [ -z "$findings" ] || fail "$machine: $findings"
done

echo "== node_exporter"
mkdir "$work/textfile"
# The command of the unit, with this folder for the machine's.
read -ra command < <(sed -n 's/^ExecStart=//p' "$fleet/kestrel-metrics.service")
command=("${command[@]//\/usr\/share\/kestrelcore\/fleet/$fleet}")
command=("${command[@]//\/var\/lib\/prometheus\/node-exporter/$work/textfile}")
"${command[@]}"
"$tools/prometheus-node-exporter" --collector.disable-defaults --collector.textfile \
  --collector.textfile.directory="$work/textfile" --web.listen-address=127.0.0.1:0 \
  2>"$work/exporter.log" &
exporter=$!
# As long as it takes, within the limit that script/fleet sets.
until
  address=$(sed -n 's/.*msg="Listening on" address=//p' "$work/exporter.log" 2>/dev/null)
  [ -n "$address" ]
do
  kill -0 "$exporter" 2>/dev/null || fail "node_exporter has ended: $(cat "$work/exporter.log")"
  sleep 0.1
done
# Directly, where the environment names a proxy.
no_proxy=127.0.0.1 /usr/bin/python3 -c 'import sys, urllib.request
print(urllib.request.urlopen(sys.argv[1], timeout=30).read().decode())' \
  "http://$address/metrics" >"$work/served"
grep '^kestrel_gpu_memory_bytes{device="0"} 8.589934592e+09$' "$work/served" ||
  fail "the metric is not served"
grep -q '^node_textfile_scrape_error 0$' "$work/served" || fail "the collector reports an error"

# A survey that cannot be made leaves the file as it is.
before=$(cat "$work/textfile/kestrel.prom")
mkdir "$work/broken"
printf '#!/bin/sh\nexit 74\n' >"$work/broken/kestrel"
chmod +x "$work/broken/kestrel"
if PATH=$work/broken:$PATH "${command[@]}"; then
  fail "kestrel-report hides a failure"
fi
[ "$(cat "$work/textfile/kestrel.prom")" = "$before" ] || fail "the metrics are lost"
[ "$(ls -A "$work/textfile")" = kestrel.prom ] || fail "kestrel-report leaves files behind"

echo "== Ansible"
mkdir "$work/facts.d"
cp "$fleet/kestrel.fact" "$work/facts.d"
# In that folder, since Ansible splits the path of a fact at its blanks.
(
  cd "$work"
  HOME=$work ANSIBLE_LOCALHOST_WARNING=false ansible --inventory localhost, --connection local \
    localhost -m setup -a "filter=ansible_local fact_path=facts.d" >facts
)
grep -q '"name": "AMD Radeon RX 7600"' "$work/facts" || fail "no fact: $(cat "$work/facts")"
grep '"memory_bytes": 8589934592' "$work/facts" || fail "no fact: $(cat "$work/facts")"

echo "== Feature file"
"$fleet/kestrel-report" labels "$work/kestrel"
# <key>=<value>, as feature files and the labels of Kubernetes allow them.
label='[A-Za-z0-9]([A-Za-z0-9._-]{0,61}[A-Za-z0-9])?'
if grep -E -v "^$label=($label)?\$" "$work/kestrel"; then
  fail "these are no labels"
fi
grep '^kestrel-gpu.count=2$' "$work/kestrel"
