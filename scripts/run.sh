#!/usr/bin/env bash
# Set-up command 1: installs what is missing, builds, and starts the editor (KELVEditor) on the
# bundled example menu, or on the menu file given as the first argument.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}
"$root/scripts/build.sh" >/dev/null
menu=${1:-$root/examples/archive-tools.ini}
# The editor keeps the full path in its recent list, so hand it one.
if [ -e "$menu" ]; then
    menu=$(cd "$(dirname "$menu")" && pwd)/$(basename "$menu")
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    echo "No display found: run this from a desktop session, or under xvfb-run." >&2
    exit 1
fi
exec "$build_dir/bin/KELVEditor" "$menu"
