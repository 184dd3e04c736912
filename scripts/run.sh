#!/usr/bin/env bash
# Set-up command 1: installs what is missing, builds the editor (KELVEditor and the files beside it,
# nothing else), and starts it on the bundled example menu, or on the menu file given as the first
# argument.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${KELV_BUILD_DIR:-$root/build}

# Told before a long first build, not after it.
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    cat >&2 <<'TEXT'
No display found (DISPLAY and WAYLAND_DISPLAY are empty): the editor's windows cannot be shown here.
  - On a desktop, run scripts/run.sh from a terminal of the desktop session.
  - Over ssh, connect with X forwarding (ssh -X) and run it again.
  - Without a screen, give it a virtual one: xvfb-run -a scripts/run.sh
To build without starting the editor, run scripts/build.sh; to build and test, scripts/test.sh.
TEXT
    exit 1
fi

"$root/scripts/build.sh" KELVEditor
menu=${1:-$root/examples/archive-tools.ini}
# The editor keeps the full path in its recent list, so hand it one.
if [ -e "$menu" ]; then
    menu=$(cd "$(dirname "$menu")" && pwd)/$(basename "$menu")
fi
echo "Starting $build_dir/bin/KELVEditor $menu"
exec "$build_dir/bin/KELVEditor" "$menu"
