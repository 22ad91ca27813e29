#!/usr/bin/env bash
# Builds the libFuzzer targets with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in build-fuzz/ and runs each for the given number
# of seconds (default 60), starting from its seed corpus in tests/fuzz/corpus.
# Prints executions and crashes per target and exits non-zero after a crash.
#
#   bash scripts/fuzz.sh          # 60 s per target
#   bash scripts/fuzz.sh 10 spot_blob bundle_data
#
# An input that crashes a target is kept as build-fuzz/crashes/<target>/crash-*.
# Once the fault is fixed, commit it under tests/fuzz/crashes/<target>/: the
# regular test tst_FuzzCorpusReplay replays it on every build. Inputs the run
# found new coverage with stay in build-fuzz/fuzz-run/<target>/ (not committed).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BRIGHTMERE_FUZZ_BUILD_DIR:-"$root/build-fuzz"}
seconds=${1:-60}
shift || true
all_targets=(bundle_file string_table spots_store spot_blob bundle_info bundle_data format reports)
targets=("$@")
((${#targets[@]})) || targets=("${all_targets[@]}")

"$root/scripts/install-packages.sh" clang-14 libclang-rt-14-dev

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER=clang++-14 "${launcher[@]}" \
    -DBRIGHTMERE_BUILD_FUZZERS=ON -DBRIGHTMERE_SANITIZE=address,undefined \
    -DBRIGHTMERE_BUILD_TESTS=OFF -DBRIGHTMERE_BUILD_DEMO=OFF -DBRIGHTMERE_BUILD_BENCH=OFF \
    -DBRIGHTMERE_BUILD_TOOLS=OFF >/dev/null
cmake --build "$build_dir" --parallel "$(nproc)" --target "${targets[@]/#/fuzz_}"

supp="$root/tests/sanitizers"
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1
export LSAN_OPTIONS="suppressions=$supp/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$supp/ubsan.supp"
export QT_QPA_PLATFORM=offscreen
export TMPDIR="$build_dir/tmp"
mkdir -p "$TMPDIR"

results=()
failed=0
for target in "${targets[@]}"; do
    run_dir="$build_dir/fuzz-run/$target"
    crash_dir="$build_dir/crashes/$target"
    log="$build_dir/fuzz-run/$target.log"
    mkdir -p "$run_dir" "$crash_dir"
    before=$(find "$crash_dir" -type f | wc -l)
    options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
             -artifact_prefix="$crash_dir/")
    # The service's answers are JSON: its words help mutations stay valid.
    case "$target" in bundle_*) options+=(-dict="$root/tests/fuzz/service_answers.dict") ;; esac
    # Text laid out for the PDF keeps each font face it opened in Qt's per-thread
    # cache, which outlives the application object and is never freed: the check
    # at exit would report it every run. Each input is still checked for leaks
    # while the cache is reachable.
    leak_at_exit=1
    [ "$target" = reports ] && leak_at_exit=0
    echo "fuzzing $target for $seconds s (log: $log)"
    status=0
    ASAN_OPTIONS="$ASAN_OPTIONS:leak_check_at_exit=$leak_at_exit" \
        "$build_dir/tests/fuzz/fuzz_$target" "${options[@]}" "$run_dir" "$root/tests/fuzz/corpus/$target" \
        >"$log" 2>&1 || status=$?
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    [ -n "$executions" ] || executions=$(grep -o '^#[0-9]*' "$log" | tail -n 1 | tr -d '#')
    crashes=$(( $(find "$crash_dir" -type f | wc -l) - before ))
    if [ "$status" -ne 0 ] && [ "$crashes" -eq 0 ]; then
        crashes=1  # stopped without leaving an input behind: see the log
    fi
    ((crashes == 0)) || failed=1
    results+=("$(printf '%-14s %12s %8s' "$target" "${executions:-0}" "$crashes")")
done

printf '\n%-14s %12s %8s\n' target executions crashes
printf '%s\n' "${results[@]}"
exit "$failed"
