#!/usr/bin/env bash
# Triggers under a flood, end to end: kelpa-bench without triggers and with
# N triggers, one after the other (0 N 0 N ...), on one generated stream.
# Prints each run's rate and checks, then the medians and their ratio; the
# ratio of interleaved runs is the figure, since a single run swings with
# whatever else the machine does. Under Xvfb when there is no display.
# Usage: bench/run-triggers.sh BUILD_DIR [TRIGGERS] [PAIRS] [SIZE]
set -euo pipefail
build=${1:-build}
triggers=${2:-1000}
pairs=${3:-5}
size=${4:-100M}
bin=$(cd "$build/bench" && pwd)

if [ -z "${DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != offscreen ] && command -v xvfb-run > /dev/null; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$bin/kelpa-streamgen" "$size" 1 "$work/stream" > /dev/null

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

failed=0
: > "$work/rate.0"
: > "$work/rate.$triggers"
for ((p = 1; p <= pairs; ++p)); do
  for n in 0 "$triggers"; do
    # A run that never got its rate (the server not up in time on a busy
    # machine) is run again; one whose checks failed counts as a failure.
    for try in 1 2 3; do
      status=0
      out=$("$bin/kelpa-bench" "$work/stream" --triggers "$n" 2> "$work/err") || status=$?
      rate=$(sed -n 's/^MB\/s=//p' <<< "$out")
      [ -n "$rate" ] && break
      cat "$work/err" >&2
    done
    [ "$status" = 0 ] || { echo "pair $p, $n triggers: checks failed (exit $status)"; failed=1; }
    printf 'pair %d, %5d triggers: %6s MB/s, fired %s, counts %s, log %s, stall %s ms, load %s\n' "$p" "$n" "$rate" \
      "$(sed -n 's/^fired=//p' <<< "$out")" "$(sed -n 's/^counts_match=//p' <<< "$out")" \
      "$(sed -n 's/^log_holds_stream=//p' <<< "$out")" "$(sed -n 's/^longest_stall_ms=//p' <<< "$out")" \
      "$(cut -d' ' -f1 /proc/loadavg)"
    echo "$rate" >> "$work/rate.$n"
  done
done
without=$(median < "$work/rate.0")
with=$(median < "$work/rate.$triggers")
echo "median without triggers: $without MB/s; with $triggers: $with MB/s"
awk -v a="$with" -v b="$without" 'BEGIN { printf "ratio=%.2f\n", a / b }'
exit "$failed"
