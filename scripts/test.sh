#!/usr/bin/env bash
# Command 2 of the quick start: build everything and run every test, headless.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_BUILD_DIR:-"$root/build"}
"$root/scripts/setup.sh"

export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "$@"
