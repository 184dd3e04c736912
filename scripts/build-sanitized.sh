#!/usr/bin/env bash
# Builds everything, tests included, with AddressSanitizer and UndefinedBehaviorSanitizer into
# ./build-asan (or $KELV_BUILD_DIR). Built with clang, so that the libFuzzer targets of fuzz/ come
# with it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build-asan}
"$root/scripts/setup.sh"
# Optimised lightly and with line tables only: a sanitizer report still names file and line, and the
# build is quicker than with full debug information.
cmake -S "$root" -B "$build_dir" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only -DNDEBUG" \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only -DNDEBUG" -DKELV_SANITIZE=ON -DKELV_BUILD_BENCH=OFF >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
