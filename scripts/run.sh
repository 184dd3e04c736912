#!/usr/bin/env bash
# Set-up command 1: installs what is missing, builds, and starts on the bundled example menu
# (or on the menu file given as the first argument).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}
"$root/scripts/build.sh" >/dev/null
menu=${1:-$root/examples/archive-tools.ini}
exec "$build_dir/src/cli/kelvmenu" tree "$menu"
