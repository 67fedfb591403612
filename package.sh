#!/bin/bash
# Sets up what is missing, builds the Debian package of the browser and the simulator from the files as they are, and
# leaves it in build/. It is built in a copy, so that the checkout stays clean.
#   ./package.sh
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

[ $# -eq 0 ] || { echo "usage: ./package.sh" >&2; exit 2; }
mkdir -p build
install_missing "${build_packages[@]}" "${package_packages[@]}"

stage "Building the package"
rm -rf build/package build/velmora_*.deb
mkdir -p build/package/velmora
tar -c --exclude=./build --exclude=./.git . | tar -x -C build/package/velmora
# Without debug symbols: nothing here keeps their package.
(cd build/package/velmora && DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" \
    dpkg-buildpackage --sanitize-env -b -us -uc) > build/package.log 2>&1 ||
    { tail -n 60 build/package.log; fail "building the package failed"; }
mv build/package/velmora_*.deb build/
rm -rf build/package
ls -l build/velmora_*.deb
