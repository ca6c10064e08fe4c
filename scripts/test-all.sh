#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test; then the
# unit tests once more under ASan and UBSan, and each fuzzer for a minute
# from the committed corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh locales
# The number tests also run under a German locale, which writes 1,5.
locale -a 2>/dev/null | grep -qiE '^de_DE\.utf-?8$' || localedef -i de_DE -f UTF-8 de_DE.UTF-8
export QT_QPA_PLATFORM=offscreen
jobs=${KELPA_JOBS:-2}
fuzz_seconds=${KELPA_FUZZ_SECONDS:-60}

echo "== core alone, without Qt =="
cmake -S . -B build-core -G Ninja -DKELPA_SHELL=OFF
cmake --build build-core -j"$jobs"
ctest --test-dir build-core --output-on-failure

echo "== whole program =="
cmake -S . -B build -G Ninja -DKELPA_SHELL=ON -DKELPA_TESTS=ON
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure

echo "== unit tests under ASan and UBSan =="
cmake -S . -B build-asan -G Ninja -DKELPA_SHELL=ON -DKELPA_TESTS=ON -DKELPA_SANITIZE=ON \
      -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build-asan -j"$jobs"
# Qt and fontconfig keep caches for the life of the process; LSan reports
# from inside them are not ours, so the leak check covers the core tests.
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ./build-asan/tests/kelpa_core_tests
ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ./build-asan/tests/kelpa_shell_tests

echo "== fuzzers, ${fuzz_seconds} s each from the committed corpus =="
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DKELPA_SHELL=OFF -DKELPA_TESTS=OFF \
      -DKELPA_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build-fuzz -j"$jobs"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
run_fuzzer() {
  local name=$1 rss=1024
  # A command run may expand up to 4 MB of text, and ASan keeps the freed
  # megabyte texts in its quarantine: long runs peak near 1 GB.
  [ "$name" = command_road ] && rss=2048
  mkdir -p "$work/$name"
  # New inputs go to the scratch folder; the committed corpus only seeds.
  ./build-fuzz/fuzz/"${name}"_fuzzer -max_total_time="$fuzz_seconds" -max_len=65536 -timeout=25 \
    -rss_limit_mb="$rss" -print_final_stats=1 -artifact_prefix="$work/$name-" \
    "$work/$name" "fuzz/corpus/$name" > "$work/$name.log" 2>&1 \
    || { tail -n 60 "$work/$name.log"; echo "fuzzer $name failed"; return 1; }
  grep -E "stat::(number_of_executed_units|average_exec_per_sec|new_units_added)" "$work/$name.log" \
    | sed "s/^/$name /"
}
# Two at a time on two cores.
status=0
for pair in "receive_road w_print" "site_book command_road"; do
  pids=()
  for name in $pair; do run_fuzzer "$name" & pids+=($!); done
  for p in "${pids[@]}"; do wait "$p" || status=1; done
done
exit $status
