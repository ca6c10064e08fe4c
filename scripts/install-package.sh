#!/usr/bin/env bash
# Installs what is missing, builds the Debian package of Kelpa and installs
# it: kelpa in /usr/bin, an entry in the desktop's menu, and its icon.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build-package -G Ninja -DCMAKE_BUILD_TYPE=Release -DKELPA_SHELL=ON -DKELPA_TESTS=OFF
cmake --build build-package --target kelpa kelpa_icons
(cd build-package && cpack -G DEB)
package=$(ls -t build-package/kelpa_*.deb | head -n 1)
echo "Installing $package"
export DEBIAN_FRONTEND=noninteractive
apt-get install -y "./$package"
