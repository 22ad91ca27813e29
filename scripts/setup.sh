#!/usr/bin/env bash
# Installs what the build needs (Debian 12) when it is missing, then
# configures and builds the kit, the demo, the tests and the tools in build/.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_BUILD_DIR:-"$root/build"}

packages=(
    g++ cmake ninja-build
    qt6-base-dev qt6-charts-dev qt6-multimedia-dev qt6-svg-dev libqt6svg6 fonts-dejavu-core
    # Qt HttpServer's CMake package needs Qt WebSockets but does not pull it in.
    qt6-httpserver-dev qt6-websockets-dev
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Need root or sudo to install ${missing[*]}" >&2; exit 1; }
        sudo=(sudo)
    fi
    export DEBIAN_FRONTEND=noninteractive
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" apt-get install -y -qq "${missing[@]}"
fi

cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build_dir" --parallel "$(nproc)"
