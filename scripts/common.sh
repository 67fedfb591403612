# Shared by the scripts beside README.md: stage titles, installation of missing packages, builds. Sourced, not run.
# SPDX-License-Identifier: MIT
. scripts/compilers.sh

build_packages=(cmake ninja-build qt6-base-dev qt6-serialbus-dev libcli11-dev)
package_packages=(build-essential debhelper)
demo_packages=(xvfb xauth openbox xdotool imagemagick fonts-dejavu-core x11-utils procps)
can_packages=(user-mode-linux busybox-static iproute2 can-utils) # for with-vcan and the tests that run there
bench_packages=(libbenchmark-dev valgrind)
test_packages=(git "${bench_packages[@]}" "${demo_packages[@]}" "${package_packages[@]}")
test_packages+=(lintian appstream desktop-file-utils shared-mime-info man-db fakeroot) # for the tests of the package
test_packages+=(python3-pyatspi gir1.2-atspi-2.0 at-spi2-core dbus) # for check-atspi
find_gcc > /dev/null || build_packages+=(g++)
find_clang > /dev/null || test_packages+=(clang)

stage() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

# Shows the lines that arrive, each in place of the one before it, cut to the width of the terminal.
show_last_line() {
    local line columns
    columns=$(stty size 2> /dev/null < /dev/tty) && columns=${columns#* } || columns=0
    ((columns > 0)) || columns=80
    while IFS= read -r line; do printf '\r\033[K%s' "${line:0:columns-1}"; done
    printf '\r\033[K'
}

# run_logged LOG COMMAND...: runs the command with its output in the log; on a terminal one line shows that it goes on:
# the last one of the output, which counts up where ninja builds.
run_logged() {
    local log=$1
    shift
    if [ ! -t 1 ] || [ "${TERM:-dumb}" = dumb ]; then
        "$@" > "$log" 2>&1
        return
    fi
    "$@" 2>&1 | tee "$log" | show_last_line
    return "${PIPESTATUS[0]}"
}

# install_missing PACKAGE...: installs the Debian packages that are not installed yet, with sudo where it is needed.
# Where that is impossible it names the missing packages and ends the script. Nothing is asked: files of configuration
# that are there stay.
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
    command -v apt-get > /dev/null || fail "please install the equivalents of these Debian packages: ${missing[*]}"
    stage "Installing ${missing[*]}"
    # shellcheck disable=SC2317 # run_logged calls it
    update_and_install() {
        "${run[@]}" apt-get update -q && "${run[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -qy --no-install-recommends -o Dpkg::Options::=--force-confold "${missing[@]}"
    }
    run_logged build/packages.log update_and_install ||
        { tail -n 20 build/packages.log; fail "these packages could not be installed: ${missing[*]}"; }
}

# install_clang_tools: installs those of the version of the installed clang; sets `clang` and `clang_major`.
install_clang_tools() {
    clang=$(find_clang) || fail "clang $least_clang or later is needed"
    clang_major=$(major_version "$clang")
    install_missing "libclang-rt-$clang_major-dev" "clang-format-$clang_major" "clang-tidy-$clang_major"
}

# build PRESET [TARGET...]: configures and builds everything or these targets, asan and fuzz with clang and the others
# with gcc; prints the log only if it fails.
build() {
    local compiler targets=()
    [ $# -eq 1 ] || targets=(--target "${@:2}")
    case "$1" in
        asan|fuzz) compiler=$clang ;;
        *) compiler=$(find_gcc) || fail "gcc $least_gcc or later is needed" ;;
    esac
    stage "Building $1 with $compiler $(major_version "$compiler")"
    # When the compiler changes, cmake loses the settings of the preset: configure from scratch.
    local cached fresh=()
    cached=$(sed -n 's/^CMAKE_CXX_COMPILER:[^=]*=//p' "build/$1/CMakeCache.txt" 2> /dev/null) || true
    [ "${cached##*/}" = "$compiler" ] || fresh=(--fresh)
    cmake --preset "$1" "${fresh[@]}" -D CMAKE_CXX_COMPILER="$compiler" > "build/$1.configure.log" 2>&1 ||
        { cat "build/$1.configure.log"; fail "configuring $1 failed"; }
    run_logged "build/$1.build.log" cmake --build --preset "$1" -j "$(nproc)" "${targets[@]}" ||
        { tail -n 60 "build/$1.build.log"; fail "building $1 failed"; }
    tail -n 1 "build/$1.build.log"
}
