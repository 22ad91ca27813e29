#!/usr/bin/env bash
# Installs, with apt-get (as root, or through sudo), the Debian 12 packages
# the kit builds with, and any extra ones named on the command line, when
# they are missing. The build, fuzz and sanitizer scripts call it.
set -euo pipefail

packages=(
    g++ cmake ninja-build
    qt6-base-dev qt6-charts-dev qt6-multimedia-dev qt6-svg-dev libqt6svg6 fonts-dejavu-core
    # Qt HttpServer's CMake package needs Qt WebSockets but does not pull it in.
    qt6-httpserver-dev qt6-websockets-dev
    "$@"
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
((${#missing[@]})) || exit 0

echo "Installing: ${missing[*]}"
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Need root or sudo to install ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq "${missing[@]}"
