#!/usr/bin/env bash
# The folders of src/ are layers: a folder includes only from itself and from the folders below it,
# and every folder but app/ is free of widgets (the core library and kelvmenu link Qt Core only).
# Exits 1 and names each offending include.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root/src"

declare -A below=(
    [model]=""
    [menufile]="model"
    [treeview]="model"
    [history]="model menufile treeview"
    [editing]="model menufile treeview"
    [commands]="model menufile treeview editing"
    [core]="model menufile treeview history editing commands"
    [app]="model menufile treeview history editing commands core"
    [cli]="model menufile treeview history editing commands core"
)

# The class headers of Qt's widget and GUI modules, which no widget-free folder may include.
qt_include=$(find /usr/include /usr/local/include -maxdepth 3 -type d -name QtWidgets -path '*qt6*' 2>/dev/null | head -n 1)
if [ -z "$qt_include" ]; then
    echo "check-layers: the Qt 6 headers were not found" >&2
    exit 1
fi
widget_headers=$( { ls "$qt_include"; ls "$(dirname "$qt_include")/QtGui"; } | grep -E '^Q[A-Za-z0-9]+$' | sort -u)

failures=0
for folder in */; do
    folder=${folder%/}
    if [ -z "${below[$folder]+set}" ]; then
        echo "src/$folder: a folder the layer check does not know; give it its place in scripts/check-layers.sh"
        failures=$((failures + 1))
        continue
    fi
    while IFS= read -r hit; do
        [ -n "$hit" ] || continue
        file=${hit%%:*}
        rest=${hit#*:}
        line=${rest%%:*}
        include=${rest#*:}
        target=$(sed -nE 's/^#include "([a-z]+)\/.*/\1/p' <<<"$include")
        if [ -n "$target" ] && [ "$target" != "$folder" ] && [[ " ${below[$folder]} " != *" $target "* ]]; then
            echo "src/$file:$line: $include (src/$folder may build on: ${below[$folder]:-nothing})"
            failures=$((failures + 1))
        fi
        if [ "$folder" != app ]; then
            header=$(sed -nE 's/^#include <(Qt(Widgets|Gui)\/)?([A-Za-z0-9]+)>.*/\1\3/p' <<<"$include")
            if [[ "$header" == QtWidgets/* || "$header" == QtGui/* ]] || { [ -n "$header" ] && grep -qx "$header" <<<"$widget_headers"; }; then
                echo "src/$file:$line: $include (a widget or GUI header outside src/app)"
                failures=$((failures + 1))
            fi
        fi
    done < <(grep -nE '^#include' -r "$folder" --include='*.h' --include='*.cpp' | sed -E 's/^([^:]+):([0-9]+):/\1:\2:/')
done

if [ "$failures" -gt 0 ]; then
    echo "check-layers: $failures include(s) point up a layer or bring widgets into the core" >&2
    exit 1
fi
echo "check-layers: every include points down"
