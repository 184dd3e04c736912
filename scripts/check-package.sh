#!/usr/bin/env bash
# Installs a build into a staging folder as a package would (prefix /usr), checks the installed files
# against packaging/installed-files.txt, checks that the installed editor finds its folder through
# its bin/ link and writes to the per-user folder when its own folder is read-only, validates the
# desktop entry, the AppStream data and the type of menu files, then builds the Debian package and
# shows what it holds. Usage: scripts/check-package.sh [BUILD_DIR] (default: build).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=$(cd "${1:-$root/build}" && pwd)
stage=$build_dir/stage
app_id=org.kelv_editor.KELVEditor
step() { printf '== %s\n' "$*"; }
fail() {
    printf 'check-package: %s\n' "$*" >&2
    exit 1
}

step "install into $stage"
rm -rf "$stage"
DESTDIR=$stage cmake --install "$build_dir" --prefix /usr >/dev/null

step "installed files"
if ! diff -u "$root/packaging/installed-files.txt" \
    <(cd "$stage" && find . \( -type f -o -type l \) | sed 's|^\./||' | LC_ALL=C sort); then
    fail "the installed files differ from packaging/installed-files.txt (+ installed, - expected)"
fi
for program in KELVEditor kelvmenu; do
    [ -x "$stage/usr/bin/$program" ] || fail "usr/bin/$program does not lead to the program"
    "$stage/usr/bin/$program" --version | grep -q "^$program (KELV Menu Editor) " ||
        fail "$program --version does not name the program and its version"
done

step "the installed example menus pass the strict check"
"$stage/usr/bin/kelvmenu" check --strict "$stage"/usr/lib/kelveditor/examples/*.ini ||
    fail "an installed example menu does not pass kelvmenu check --strict"

# The editor runs off-screen for a moment on a copy of an example menu; opening it writes Recent.ini.
run_editor() { # HOME, then the command prefix (e.g. runuser -u nobody --)
    local home=$1
    shift
    cp "$root/examples/archive-tools.ini" "$home/menu.ini"
    "$@" env -i HOME="$home" PATH=/usr/bin:/bin QT_QPA_PLATFORM=offscreen \
        timeout 3 "$stage/usr/bin/KELVEditor" "$home/menu.ini" >/dev/null 2>&1 || true
}
program_folder=$stage/usr/lib/kelveditor
step "the editor writes beside itself through its bin/ link"
home=$(mktemp -d)
run_editor "$home"
[ -f "$program_folder/Recent.ini" ] || fail "Recent.ini was not written in usr/lib/kelveditor"
rm -f "$program_folder/Recent.ini"
rm -rf "$home"

step "a read-only program folder sends the editor's writes to the per-user folder"
home=$(mktemp -d)
if [ "$(id -u)" -ne 0 ]; then
    chmod a-w "$program_folder"
    run_editor "$home"
    chmod u+w "$program_folder"
elif command -v runuser >/dev/null && id nobody >/dev/null 2>&1; then
    chmod 755 "$home"
    chown nobody "$home"
    run_editor "$home" runuser -u nobody --
else
    echo "(skipped: root without runuser and the user nobody)"
    touch "$home/.skip"
fi
if [ ! -e "$home/.skip" ]; then
    [ ! -e "$program_folder/Recent.ini" ] || fail "Recent.ini was written into the read-only program folder"
    [ -f "$home/.local/share/KELVEditor/Recent.ini" ] || fail "Recent.ini is not in the per-user folder"
fi
rm -rf "$home"

step "desktop entry, AppStream data"
desktop-file-validate "$stage/usr/share/applications/$app_id.desktop"
# Not --strict: newer AppStream versions add notes (infos) on tags the older ones still want.
appstreamcli validate --no-net "$stage/usr/share/metainfo/$app_id.metainfo.xml"
metainfo_version=$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$stage/usr/share/metainfo/$app_id.metainfo.xml")
[ "$metainfo_version" = "$("$stage/usr/bin/kelvmenu" --version | sed -n '1s/.* //p')" ] ||
    fail "the AppStream release $metainfo_version is not the program's version"

step "type of menu files"
mime=$(mktemp -d)
cp -r "$stage/usr/share/mime" "$mime/"
mime_env=(env XDG_DATA_DIRS="$mime:/usr/share" XDG_DATA_HOME="$mime/none" XDG_CURRENT_DESKTOP=GNOME)
"${mime_env[@]}" update-mime-database "$mime/mime"
mime_type() { "${mime_env[@]}" xdg-mime query filetype "$1"; }
printf 'LANGU=01\r\n[Menu]\r\n' >"$mime/plain.ini"
printf 'KELV - Menu\n\n[Menu]\n\nA\n\n[/Menu]\n\n[Commands]\n\n[/Commands]\n' >"$mime/lf.ini"
[ "$(mime_type "$root/examples/archive-tools.ini")" = application/x-kelv-menu ] || fail "a menu file is not recognised"
[ "$(mime_type "$mime/lf.ini")" = application/x-kelv-menu ] || fail "a menu file with LF line ends is not recognised"
[ "$(mime_type "$mime/plain.ini")" = text/plain ] || fail "another .ini file is taken for a menu file"
rm -rf "$mime"

step "Debian package"
rm -rf "$build_dir/package"
(cd "$build_dir" && cpack -G DEB >/dev/null)
deb=$(ls "$build_dir"/package/kelveditor_*.deb)
dpkg-deb -I "$deb"
dpkg-deb -f "$deb" Depends | grep -q 'libqt6widgets6' || fail "the package does not depend on the Qt libraries"
dpkg-deb -f "$deb" Depends | grep -q 'qt6-base-abi (= ' || fail "the package does not depend on the exact Qt release it was built with"
dpkg-deb -c "$deb"
unpacked=$(mktemp -d)
dpkg-deb -x "$deb" "$unpacked"
for program in KELVEditor kelvmenu; do
    file -b "$unpacked/usr/lib/kelveditor/$program" | grep -q 'ELF.*, stripped' ||
        fail "usr/lib/kelveditor/$program in the package is not a stripped program"
done
rm -rf "$unpacked"
if ! diff -u "$root/packaging/installed-files.txt" \
    <(dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { sub(/^\.\//, "", $6); print $6 }' | LC_ALL=C sort); then
    fail "the package holds other files than packaging/installed-files.txt"
fi
echo "check-package: $(basename "$deb") is fine"
