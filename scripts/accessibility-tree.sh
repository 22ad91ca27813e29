#!/usr/bin/env bash
# Runs the demo on a virtual display with a session bus and the accessibility
# registry, as a screen reader would find it, and prints what
# scripts/accessibility-tree.py reads from it: each screen's controls with
# their names, roles and states. Needs a built demo (bash scripts/demo.sh
# builds it) and installs what is missing.
#
#   bash scripts/accessibility-tree.sh [build-dir]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${1:-"$root/build"}
demo="$build_dir/apps/demo/brightmere_demo"
[ -x "$demo" ] || { echo "no demo at $demo: build it first (bash scripts/demo.sh)" >&2; exit 1; }
"$root/scripts/install-packages.sh" xvfb dbus at-spi2-core python3-pyatspi

display=:$(( 90 + RANDOM % 9 ))
Xvfb "$display" -screen 0 1024x900x24 >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null || true' EXIT
sleep 1

home=$(mktemp -d)
DISPLAY=$display HOME=$home DEMO="$demo" SCRIPT="$root/scripts/accessibility-tree.py" \
    dbus-run-session -- bash -c '
        /usr/libexec/at-spi-bus-launcher --launch-immediately &
        sleep 1
        # Qt talks to the accessibility bus only when asked to or when a
        # desktop says a screen reader is on; there is no desktop here.
        QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 "$DEMO" >"$HOME/demo.log" 2>&1 &
        demo=$!
        status=0
        /usr/bin/python3 "$SCRIPT" || status=$?
        kill $demo
        exit $status' 2> >(grep -v "dbus-daemon" >&2)
rm -rf "$home"
