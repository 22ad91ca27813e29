#!/usr/bin/env bash
# Command 1 of the quick start: build everything and run the demo host.
# Without a display the demo runs offscreen and saves what it shows as PNG.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_BUILD_DIR:-"$root/build"}
"$root/scripts/setup.sh"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found: running the demo offscreen."
    export QT_QPA_PLATFORM=offscreen
    exec "$build_dir/apps/demo/brightmere_demo" --screenshot "$build_dir/demo.png" "$@"
fi
exec "$build_dir/apps/demo/brightmere_demo" "$@"
