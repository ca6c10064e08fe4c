#!/usr/bin/env bash
# The reaction bench: the bare Qt answering client (the floor) and Kelpa, each
# under its own kelpa-latency-server, in interleaved pairs; prints every run
# and the medians of each figure, then every probe of all runs pooled. Under Xvfb when there is no display.
# Usage: bench/run-reaction.sh BUILD_DIR [PAIRS]
set -euo pipefail
build=${1:-build}
pairs=${2:-5}
bin=$(cd "$build/bench" && pwd)

if [ -z "${DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != offscreen ] && command -v xvfb-run > /dev/null; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for ((i = 1; i <= pairs; i++)); do
  for who in floor kelpa; do
    if [ "$who" = floor ]; then client="$bin/kelpa-answer-floor"; else client="$bin/kelpa-reaction"; fi
    echo "== $who, run $i (load $(cut -d' ' -f1-3 /proc/loadavg))"
    "$bin/kelpa-latency-server" --samples "$work/$who.samples" -- "$client" | tee "$work/$who.$i"
  done
done

echo "== medians of $pairs runs (ms)"
for who in floor kelpa; do
  for key in quiet_p50_ms quiet_p99_ms quiet_max_ms flood_p50_ms flood_p99_ms flood_max_ms; do
    cat "$work/$who".* | awk -F= -v k="$key" '$1 == k {print $2}' | sort -g |
      awk -v w="$who" -v k="$key" '{v[NR] = $1} END {printf "%s %s=%s\n", w, k, NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2}'
  done
done

echo "== all probes of the $pairs runs pooled (ms)"
for who in floor kelpa; do
  for set in quiet flood; do
    awk -v s="$set" '$1 == s {print $2 / 1e6}' "$work/$who.samples" | sort -g |
      awk -v w="$who" -v s="$set" '{v[NR] = $1; if ($1 > 1) slow++}
        END {printf "%s %s: probes=%d p50=%.3f p99=%.3f max=%.3f over_1ms=%d\n", w, s, NR, v[int(NR * 0.5) + 1], v[int(NR * 0.99) + 1], v[NR], slow}'
  done
done
