#!/usr/bin/env bash
# Set-up command 2: installs what is missing, builds, and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)"
