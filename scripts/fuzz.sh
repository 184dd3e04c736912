#!/usr/bin/env bash
# Usage: scripts/fuzz.sh [SECONDS] [TARGET...]
# Builds the sanitizer build (scripts/build-sanitized.sh) and runs each libFuzzer target of fuzz/
# (all of them by default) for SECONDS (60 by default), at low priority. The committed seeds of
# fuzz/corpus/TARGET are read but never written: new inputs go to BUILD/fuzz/corpus-TARGET, and an
# input that fails is kept as BUILD/fuzz/findings/TARGET-crash-... (rerun it with
# BUILD/fuzz/TARGET FILE). Exits 1 when a target found something.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build-asan}
seconds=${1:-60}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    targets=(fuzz_menufile fuzz_editscript)
fi

KELV_BUILD_DIR="$build_dir" "$root/scripts/build-sanitized.sh"
if [ ! -x "$build_dir/fuzz/${targets[0]}" ]; then
    echo "fuzz: $build_dir/fuzz/${targets[0]} was not built: the compiler has no -fsanitize=fuzzer" >&2
    exit 1
fi

export ASAN_OPTIONS=detect_leaks=1:halt_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p "$build_dir/fuzz/findings"
failed=0
for target in "${targets[@]}"; do
    work="$build_dir/fuzz/corpus-$target"
    log="$build_dir/fuzz/$target.log"
    mkdir -p "$work"
    echo "fuzz: $target for $seconds s (log: $log)"
    if nice -n 10 "$build_dir/fuzz/$target" -max_total_time="$seconds" -timeout=25 -print_final_stats=1 \
        -dict="$root/fuzz/$target.dict" -artifact_prefix="$build_dir/fuzz/findings/$target-" \
        "$work" "$root/fuzz/corpus/$target" >"$log" 2>&1; then
        grep -E '^(#[0-9]+[[:space:]]+DONE|stat::number_of_executed_units|stat::average_exec_per_sec|stat::peak_rss_mb)' "$log" || true
    else
        failed=1
        echo "fuzz: $target found a failing input; the end of its log:" >&2
        tail -n 80 "$log" >&2
    fi
done
exit "$failed"
