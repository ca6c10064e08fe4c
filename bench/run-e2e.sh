#!/usr/bin/env bash
# The end-to-end drain of one run: the floor client and kelpa-bench take
# turns on the same generated stream (PAIRS pairs, floor first), then the
# typing bench during a paced flood. Prints each pair's rates and their
# ratio, then the medians. Under Xvfb when there is no display.
# Usage: bench/run-e2e.sh BUILD_DIR [SIZE] [TYPING_SECONDS] [PAIRS] [RATE_MBPS]
set -euo pipefail
build=${1:-build}
size=${2:-100M}
typing=${3:-5}
pairs=${4:-5}
rate=${5:-30}
bin=$(cd "$build/bench" && pwd)

floor() {
  coproc server { exec "$bin/kelpa-stream-server" "$work/stream" 2>/dev/null; }
  local pid=$server_PID port
  read -r _ port <&"${server[0]}"
  "$bin/kelpa-floor-client" "$port" "$work/floor.out"
  wait "$pid" 2>/dev/null || true
}

value() { sed -n "s|^$1=||p" "$2"; }

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

run() {
  : > "$work/ratios"; : > "$work/floors"; : > "$work/kelpas"; : > "$work/stalls"; : > "$work/memory"
  for i in $(seq "$pairs"); do
    f=$(floor | sed -n 's/.*MB\/s=//p')
    "$bin/kelpa-bench" "$work/stream" > "$work/k.out" || { cat "$work/k.out"; echo "kelpa-bench failed"; exit 1; }
    k=$(value MB/s "$work/k.out")
    echo "pair $i: floor $f MB/s, kelpa $k MB/s, ratio $(awk -v k="$k" -v f="$f" 'BEGIN { printf "%.3f", k / f }')," \
      "stall $(value longest_stall_ms "$work/k.out") ms, memory $(value peak_memory_MB "$work/k.out") of" \
      "$(value memory_limit_MB "$work/k.out") MB ($(value peak_rss_MB "$work/k.out") resident +" \
      "$(value history_file_MB "$work/k.out") history), counts $(value counts_match "$work/k.out")"
    echo "$f" >> "$work/floors"; echo "$k" >> "$work/kelpas"
    awk -v k="$k" -v f="$f" 'BEGIN { print k / f }' >> "$work/ratios"
    value longest_stall_ms "$work/k.out" >> "$work/stalls"
    value peak_memory_MB "$work/k.out" >> "$work/memory"
  done
  echo "medians: floor $(median < "$work/floors") MB/s, kelpa $(median < "$work/kelpas") MB/s," \
    "ratio $(median < "$work/ratios"), stall $(median < "$work/stalls") ms (max $(sort -g "$work/stalls" | tail -1))," \
    "memory $(median < "$work/memory") MB"
  if [ "$typing" != 0 ]; then
    echo "== kelpa-bench, a line typed every 100 ms during a ${typing}s flood at ${rate} MB/s"
    "$bin/kelpa-bench" "$work/stream" --typing "$typing" --rate "$rate" |
      grep -E '^(MB/s|longest_stall_ms|typed|reached_server|delay_ms_p50|delay_ms_p99|delay_ms_max|peak_memory_MB)='
  fi
}

if [ -z "${DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != offscreen ] && command -v xvfb-run > /dev/null; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$bin/kelpa-streamgen" "$size" 1 "$work/stream" > /dev/null
echo "machine: nproc=$(nproc), $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), $(free -m | awk '/Mem:/ {print $2}') MB; display ${DISPLAY:-offscreen}; load $(cut -d' ' -f1-3 /proc/loadavg)"
run
echo "load after: $(cut -d' ' -f1-3 /proc/loadavg)"
