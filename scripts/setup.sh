#!/usr/bin/env bash
# Installs, with apt-get, whatever a fresh Debian 12 / Ubuntu 24.04 machine lacks to build and test
# the editor. Packages already present are left alone, so a second run costs nothing.
set -euo pipefail

# Besides the build and the tests: the manual pages, and the checks of the installed files and of the package (scripts/check-package.sh);
# clang, its sanitizer and libFuzzer runtimes (libclang-rt-dev) and llvm's symbolizer serve the
# sanitizer build and the fuzz targets.
packages=(cmake g++ make qt6-base-dev qt6-base-private-dev qt6-base-dev-tools libgl-dev xvfb xauth fp-utils
    help2man gzip desktop-file-utils appstream shared-mime-info xdg-utils libglib2.0-bin dpkg-dev file
    clang libclang-rt-dev llvm)
missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
