#!/usr/bin/env bash
# Configures and builds everything into ./build (or $KELV_BUILD_DIR).
# Set KELV_WERROR=1 to turn compiler warnings into errors.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DKELV_WERROR="${KELV_WERROR:-OFF}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
