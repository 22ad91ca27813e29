#!/usr/bin/env bash
# Command 1 of the quick start: build everything and run the demo host.
# With a display it opens in a phone-sized window. Without one it runs the
# headless walkthrough offscreen: a picture per step into build/walkthrough/
# (or BRIGHTMERE_WALKTHROUGH_DIR) and a summary on standard output, then the
# same tour with text 1.5 times larger into its large-text/ folder; the exit
# code is 0 only when every step of both did what it should.
# Arguments after the script's own go to the demo (see --help).
#
# The loopback localisation service starts with it on a free port, serving
# tools/localisation-service/bundles, and the demo downloads its texts from
# there. --no-localisation-service runs the demo on its built-in texts only.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_BUILD_DIR:-"$root/build"}

with_service=1
if [ "${1:-}" = "--no-localisation-service" ]; then
    with_service=0
    shift
fi

"$root/scripts/setup.sh"

demo_args=("$@")
large_text_args=()
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    walk_dir=${BRIGHTMERE_WALKTHROUGH_DIR:-"$build_dir/walkthrough"}
    echo "No display found: running the walkthrough offscreen into $walk_dir (and large-text/)."
    export QT_QPA_PLATFORM=offscreen
    demo_args=(--walkthrough "$walk_dir" "$@")
    large_text_args=(--walkthrough "$walk_dir/large-text" --text-scale 1.5 "$@")
fi

# The demo with the arguments given, then, headless, the large-text tour.
run_demo() {
    "$build_dir/apps/demo/brightmere_demo" "$@" "${demo_args[@]}" || return
    if [ ${#large_text_args[@]} -gt 0 ]; then
        "$build_dir/apps/demo/brightmere_demo" "$@" "${large_text_args[@]}"
    fi
}

if [ "$with_service" -eq 0 ]; then
    run_demo
    exit
fi

service_log=$(mktemp)
"$build_dir/tools/localisation-service/brightmere-localisation-service" --host 127.0.0.1 --port 0 \
    --folder "$root/tools/localisation-service/bundles" >"$service_log" 2>&1 &
service_pid=$!
trap 'kill "$service_pid" 2>/dev/null || true; rm -f "$service_log"' EXIT

url=""
for _ in $(seq 50); do
    url=$(sed -n 's/^listening on \([^ ]*\).*/\1/p' "$service_log")
    [ -n "$url" ] && break
    kill -0 "$service_pid" 2>/dev/null || break
    sleep 0.1
done
if [ -z "$url" ]; then
    echo "The localisation service did not start:" >&2
    cat "$service_log" >&2
    exit 1
fi
echo "Localisation service at $url"
run_demo --i18n-service "$url"
