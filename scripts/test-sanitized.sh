#!/usr/bin/env bash
# Runs the tests under sanitizers:
#
#   bash scripts/test-sanitized.sh            # every test, AddressSanitizer + UndefinedBehaviorSanitizer (build-asan/)
#   bash scripts/test-sanitized.sh thread     # the tests that cross threads, ThreadSanitizer (build-tsan/)
#
# Any report fails the test it came from. Every test runs with the
# suppressions in tests/sanitizers (the configure step below turns them on
# through the tests' environment). Extra arguments go to ctest.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mode=${1:-address}
shift || true

case "$mode" in
address)
    build_dir=${BRIGHTMERE_ASAN_BUILD_DIR:-"$root/build-asan"}
    sanitize=address,undefined
    build_targets=(all)
    tests=()
    ;;
thread)
    build_dir=${BRIGHTMERE_TSAN_BUILD_DIR:-"$root/build-tsan"}
    sanitize=thread
    # The localisation manager's tests (lookupsDuringRefreshes, its
    # notifications and service client on the network thread) and the other
    # tests whose work crosses threads: the REST client, the main queue, the
    # fault injection.
    build_targets=(tst_BMI18NManager tst_BMSDKRestServiceManager tst_Foundation tst_I18NServiceFaults)
    tests=(-R "^($(IFS='|'; echo "${build_targets[*]}"))\$")
    ;;
*)
    echo "usage: $0 [address|thread] [ctest arguments...]" >&2
    exit 2
    ;;
esac

"$root/scripts/install-packages.sh"

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# The demo stays on: its host and walkthrough are tests too.
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" \
    -DBRIGHTMERE_SANITIZE="$sanitize" -DBRIGHTMERE_BUILD_BENCH=OFF >/dev/null
cmake --build "$build_dir" --parallel "$(nproc)" --target "${build_targets[@]}"

export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "${tests[@]}" "$@"
