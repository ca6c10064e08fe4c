#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen

echo "== core alone, without Qt =="
cmake -S . -B build-core -G Ninja -DKELPA_SHELL=OFF
cmake --build build-core
ctest --test-dir build-core --output-on-failure

echo "== whole program =="
cmake -S . -B build -G Ninja -DKELPA_SHELL=ON -DKELPA_TESTS=ON
cmake --build build
ctest --test-dir build --output-on-failure
