#!/usr/bin/env bash
# Builds the sanitizer build (scripts/build-sanitized.sh) and runs every test in it: a memory
# error, a leak or undefined behaviour fails the test it happens in.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build-asan}
KELV_BUILD_DIR="$build_dir" "$root/scripts/build-sanitized.sh"
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)"
