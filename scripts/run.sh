#!/usr/bin/env bash
# Installs what is missing, builds Kelpa and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELPA_SHELL=ON
cmake --build build --target kelpa
exec ./build/kelpa
