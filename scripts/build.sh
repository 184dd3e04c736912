#!/usr/bin/env bash
# Configures and builds into ./build (or $KELV_BUILD_DIR): everything, or only the targets given as
# arguments (scripts/build.sh KELVEditor). Set KELV_WERROR=1 to turn compiler warnings into errors.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
echo "Configuring the build in $build_dir"
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DKELV_WERROR="${KELV_WERROR:-OFF}" >/dev/null
targets=()
if [ $# -gt 0 ]; then
    targets=(--target "$@")
fi
cmake --build "$build_dir" -j"$(nproc)" "${targets[@]}"
