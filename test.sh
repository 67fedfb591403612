#!/bin/bash
# Sets up what is missing and runs every check: the suite in dev (gcc) and in asan (clang), the tests on the CAN
# interface vcan0 in dev, comments and formatting, clang-tidy, the performance that can be counted, the windows through
# the interface of assistive programs, the package, and the demonstration without a display with the handbook's pictures.
#   ./test.sh                  everything
#   ./test.sh --without-can    all but what needs vcan0
#   ./test.sh --quick          the suite in dev only, without what needs vcan0
#   ./test.sh --coverage       the suite and the tests on vcan0 with coverage counters; fails below the aims
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

quick=false
coverage=false
can=true
case "${1:-}" in
    "") ;;
    --quick) quick=true can=false ;;
    --without-can) can=false ;;
    --coverage) coverage=true ;;
    *) echo "usage: ./test.sh [--quick | --without-can | --coverage]" >&2; exit 2 ;;
esac
mkdir -p build
summary=$PWD/build/summary.txt
: > "$summary"
summarise() { echo "$*" >> "$summary"; }

# beside FUNCTION: runs it beside what follows. `await FUNCTION` shows its output, and ends the script if it failed.
declare -A beside=()
beside() {
    set -m # a process group of its own, which can be ended as a whole
    "$1" > "build/$1.log" 2>&1 < /dev/null &
    set +m
    beside[$1]=$!
}
await() {
    local status=0
    wait "${beside[$1]}" || status=$?
    unset "beside[$1]"
    cat "build/$1.log"
    [ $status -eq 0 ] || exit 1
}
end_beside() { for process in "${beside[@]}"; do kill -- "-$process" 2> /dev/null || true; done; }
trap end_beside EXIT

# suite PRESET: builds and runs the tests; keeps ctest's result line for the summary.
suite() {
    build "$1"
    stage "Testing $1"
    ctest --preset "$1" 2>&1 | tee "build/$1.ctest.log" || fail "tests of $1 failed"
    summarise "$1: $(grep 'tests passed' "build/$1.ctest.log")"
}

# The tests on vcan0; `way` is the one that with-vcan takes.
suite_on_vcan() {
    stage "Testing with-vcan: $way"
    tests/vcan/check-with-vcan || fail "the checks of scripts/vcan/with-vcan failed"
    stage "Testing on vcan0: $way"
    scripts/vcan/with-vcan ctest --preset vcan 2>&1 | tee build/vcan.ctest.log || fail "tests on vcan0 failed"
    summarise "vcan0: $(grep 'tests passed' build/vcan.ctest.log)"
}

# Versions of clang-format format differently: only version 14 checks.
format() {
    local checker=clang-format-14 files
    if ! command -v $checker > /dev/null; then
        summarise "formatting: not checked, it takes $checker"
        return
    fi
    stage "Formatting"
    files=$(git ls-files '*.cpp' '*.h')
    [ -n "$files" ] || fail "this is no git checkout"
    xargs $checker --dry-run -Werror <<< "$files" || fail "run $checker -i on these files"
}

# The examples of mutants.sh.
mutations() {
    stage "Mutations"
    python3 -m doctest tests/mutants/mutations.py || fail "the mutations are not those that are described"
}

# The formatting leaves comments as they are.
comments() {
    local status=0
    stage "Comments"
    LC_ALL=C.UTF-8 git grep -nP '^(?=.{121})\s*//' -- '*.cpp' '*.h' || status=$?
    [ $status -eq 1 ] || fail "comments have at most 120 characters in a line" # 1: git has found none
}

# The sources that this branch changes, or whose headers it changes; all of them when the checks have changed or there is
# no origin/main.
tidy_files() {
    if ! git rev-parse -q --verify origin/main > /dev/null || ! git diff --quiet origin/main -- .clang-tidy; then
        git ls-files 'src/*.cpp' 'sim/*.cpp' 'cli/*.cpp'
        return
    fi
    git diff --name-only --diff-filter=d origin/main -- src sim cli > build/changed.txt
    # What each object was built from: its name, then in lines of their own the source and its headers.
    ninja -C build/asan -t deps | awk -v root="$PWD/" '
        FNR == NR { changed[root $0]; next }
        /^[^ ]/ { source = "" }
        source == "" && $1 ~ /\.cpp$/ { source = $1 }
        $1 in changed { print substr(source, length(root) + 1) }' build/changed.txt - |
        sed -nE '/^(src|sim|cli)\//p' | sort -u
}

tidy() {
    stage "clang-tidy $clang_major"
    tidy_files | xargs -r -n 1 -P "$(nproc)" "clang-tidy-$clang_major" --quiet -p build/asan \
        > build/tidy.log 2> build/tidy.err || { cat build/tidy.log; fail "clang-tidy has findings"; }
    echo "$(tidy_files | wc -l) files without findings"
}

# What counts instructions and bytes, which no load on the machine changes.
performance() {
    tests/bench/check-bench || fail "bench.sh does not compare with the aims"
    ./bench.sh --counted --check 2>&1 | tee build/bench.log || fail "a row of bench/aims.txt is missed"
    summarise "performance: $(grep -c '| met ' build/bench.log) aims met"
}

windows_from_outside() {
    stage "The windows from outside"
    tests/atspi/check-atspi || fail "assistive programs and keys do not find everything"
}

the_package() {
    stage "The package"
    tests/package/check-package || fail "the package is not sound"
}

release() {
    build release
    ! grep 'warning:' build/release.build.log || fail "release has warnings"
    tests/package/check-hardening build/release/{src/velmora,cli/velmora-cli,sim/velmora-sim} ||
        fail "release is not hardened"
}

demonstrations() {
    stage "Demonstration without a display"
    tests/demo/check-demo || fail "demo.sh does not report programs that end"
    tests/demo/check-progress || fail "a long build does not show that it goes on"
    ./demo.sh --headless
    tests/docs/check-handbook || fail "the handbook names what is not there"
    if $can; then ./demo.sh --can --headless; fi
}

# covered WHAT OPTION...: prints the table and fails below the aims.
covered() {
    stage "Coverage of $1"
    gcovr -r . --object-directory build/coverage --exclude-throw-branches --exclude-unreachable-branches -s "${@:2}" |
        tee build/gcovr.log || fail "the coverage of $1 is below the aim"
    summarise "coverage of $1: $(grep -E '^(lines|branches):' build/gcovr.log | tr '\n' ' ')"
}

measure_coverage() {
    find build/coverage -name '*.gcda' -delete 2> /dev/null || true
    # Programs that may write no file, for a test, would complain of their counters.
    export GCOV_ERROR_FILE=/dev/null
    suite coverage
    stage "Testing on vcan0: $way"
    # No process may end while another one is writing the same counters: one at a time.
    scripts/vcan/with-vcan ctest --test-dir build/coverage -L '^vcan$' --output-on-failure > build/vcan.ctest.log ||
        { cat build/vcan.ctest.log; fail "tests on vcan0 failed"; }
    covered "all sources" -f src -f sim -f cli --fail-under-line 97
    covered "all but the windows" -f 'src/[a-v]*/' -f 'src/CANopen' -f sim -f cli --fail-under-line 99 \
        --fail-under-branch 95
}

if $quick; then
    install_missing "${build_packages[@]}"
    suite dev
else
    install_missing "${build_packages[@]}" "${test_packages[@]}"
    install_clang_tools
    if $can; then
        install_missing "${can_packages[@]}"
        # These tests create interfaces and large socket buffers, which needs root: User Mode Linux runs them as root.
        [ "$(id -u)" -eq 0 ] || export VELMORA_VCAN=${VELMORA_VCAN:-uml}
        way=$(scripts/vcan/with-vcan --way) || fail "no vcan0 here; ./test.sh --without-can leaves out what needs it"
    fi
    if $coverage; then
        install_missing gcovr
        measure_coverage
    else
        # What mostly waits, or uses one processor, is run beside what uses all of them.
        comments
        mutations
        format
        suite dev
        if $can; then beside suite_on_vcan; fi
        beside windows_from_outside
        suite asan
        if $can; then await suite_on_vcan; fi
        await windows_from_outside
        beside the_package
        tidy
        performance
        await the_package
        release
        demonstrations
    fi
fi
$can || summarise "vcan0: left out"
stage "Summary"
cat "$summary"
