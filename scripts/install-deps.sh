#!/usr/bin/env bash
# Installs what building and testing Kelpa needs on Debian 12, as root.
# Does nothing when everything is already there.
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-14-dev qt6-base-dev qt6-svg-dev libgtest-dev libgmock-dev
          libbenchmark-dev fonts-dejavu-core desktop-file-utils xvfb xauth linux-perf "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
