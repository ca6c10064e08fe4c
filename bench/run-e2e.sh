#!/usr/bin/env bash
# The end-to-end benches of one run: the floor client and kelpa-bench on the
# same generated stream, then the typing bench. Under Xvfb when there is no
# display. Usage: bench/run-e2e.sh BUILD_DIR [SIZE] [TYPING_SECONDS]
set -euo pipefail
build=${1:-build}
size=${2:-20M}
typing=${3:-5}
bin=$(cd "$build/bench" && pwd)

floor() {
  coproc server { exec "$bin/kelpa-stream-server" "$work/stream" 2>/dev/null; }
  local pid=$server_PID port
  read -r _ port <&"${server[0]}"
  "$bin/kelpa-floor-client" "$port" "$work/floor.out"
  wait "$pid" 2>/dev/null || true
}

run() {
  echo "== floor client (bare Qt: read, append to a file)"
  floor
  echo "== kelpa-bench, flood"
  "$bin/kelpa-bench" "$work/stream"
  echo "== floor client again"
  floor
  echo "== kelpa-bench, typing during a ${typing}s flood"
  "$bin/kelpa-bench" "$work/stream" --typing "$typing"
}

if [ -z "${DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != offscreen ] && command -v xvfb-run > /dev/null; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$bin/kelpa-streamgen" "$size" 1 "$work/stream" > /dev/null
echo "machine: nproc=$(nproc), $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), $(free -m | awk '/Mem:/ {print $2}') MB; display ${DISPLAY:-offscreen}"
run
