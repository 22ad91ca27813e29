#!/usr/bin/env bash
# Installs what the build needs (Debian 12) when it is missing, then
# configures and builds the kit, the demo, the tests and the tools in build/.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_BUILD_DIR:-"$root/build"}

"$root/scripts/install-packages.sh"

cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build_dir" --parallel "$(nproc)"
