# Shared by demo.sh and test.sh: stage titles and the installation of what is missing. Sourced, not run.
# SPDX-License-Identifier: MIT

build_packages=(g++-12 cmake ninja-build qt6-base-dev qt6-serialbus-dev)
demo_packages=(xvfb xauth openbox xdotool imagemagick fonts-dejavu-core x11-utils procps)
can_packages=(user-mode-linux busybox-static iproute2 can-utils) # for tests/with-vcan and the tests that run there
test_packages=(git clang-14 libclang-rt-14-dev clang-format-14 clang-tidy-14 "${demo_packages[@]}")

stage() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

# install_missing PACKAGE...: installs the Debian packages that are not there yet, with sudo where it is needed. Where
# that is impossible it says what is missing and ends the script.
install_missing() {
    local package missing=() run=()
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo > /dev/null || fail "please install these packages first: ${missing[*]}"
        run=(sudo)
    fi
    command -v apt-get > /dev/null || fail "please install what these Debian packages hold: ${missing[*]}"
    stage "Installing ${missing[*]}"
    { "${run[@]}" apt-get update -q && "${run[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -qy --no-install-recommends "${missing[@]}"; } > build/packages.log 2>&1 ||
        { tail -n 20 build/packages.log; fail "these packages could not be installed: ${missing[*]}"; }
}

# build PRESET: configures and builds; quiet unless it fails.
build() {
    stage "Building $1"
    cmake --preset "$1" > "build/$1.configure.log" 2>&1 || { cat "build/$1.configure.log"; fail "configuring $1 failed"; }
    cmake --build --preset "$1" -j "$(nproc)" > "build/$1.build.log" 2>&1 ||
        { tail -n 60 "build/$1.build.log"; fail "building $1 failed"; }
    tail -n 1 "build/$1.build.log"
}
