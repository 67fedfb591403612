#!/bin/bash
# Sets up what is missing and runs one fuzzer of tests/fuzz; ends with 0 when it has found nothing.
#   ./fuzz.sh TARGET SECONDS              tests/fuzz/Fuzz<TARGET>.cpp, from its seeds in tests/fuzz/corpus/<TARGET> and
#                                         what earlier runs have added to them in build/fuzz/corpus/<TARGET>
#   ./fuzz.sh TARGET SECONDS -OPTION...   with further options of libFuzzer, such as -max_len=100
# What it finds is kept in build/fuzz/findings: build/fuzz/tests/fuzz/Fuzz<TARGET> FILE shows it again.
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

misused() { printf '%s\n' "$*" "usage: ./fuzz.sh TARGET SECONDS [-OPTION...]" "targets: ${targets[*]}" >&2; exit 2; }
targets=(tests/fuzz/Fuzz*.cpp)
targets=("${targets[@]#tests/fuzz/Fuzz}")
targets=("${targets[@]%.cpp}")
[ $# -ge 2 ] || misused "a target and a number of seconds are needed"
target=$1 seconds=$2
shift 2
[[ " ${targets[*]} " == *" $target "* && $target != *' '* ]] || misused "there is no target \"$target\""
[[ $seconds =~ ^[1-9][0-9]{0,6}$ ]] || misused "\"$seconds\" is no number of seconds"

corpus=build/fuzz/corpus/$target findings=build/fuzz/findings home=build/fuzz/home
mkdir -p "$corpus" "$findings" "$home"
packages=("${build_packages[@]}")
find_clang > /dev/null || packages+=(clang)
install_missing "${packages[@]}"
install_clang_tools
build fuzz "Fuzz$target"

options=(-max_total_time="$seconds" -timeout=60 -rss_limit_mb=4096 -print_final_stats=1)
options+=(-artifact_prefix="$findings/$target-" "$@")
dictionary=tests/fuzz/dictionaries/$target.dict
[ ! -e "$dictionary" ] || options+=(-dict="$dictionary")
# As ctest runs the tests. To be fast, few freed bytes are held back, and only FILE alone shows who allocated them.
export QT_QPA_PLATFORM=offscreen HOME=$PWD/$home XDG_CONFIG_HOME=$PWD/$home/config XDG_RUNTIME_DIR=$PWD/$home
export LC_ALL=C.UTF-8 TZ=Europe/Berlin ASAN_OPTIONS=quarantine_size_mb=8:malloc_context_size=1
stage "Fuzzing $target for $seconds s"
status=0
"build/fuzz/tests/fuzz/Fuzz$target" "${options[@]}" "$corpus" "tests/fuzz/corpus/$target" \
    > "build/fuzz/$target.log" 2>&1 || status=$?
executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/$target.log")
if [ $status -ne 0 ]; then
    tail -n 60 "build/fuzz/$target.log"
    fail "$target: a finding after ${executions:-an unknown number of} executions, see build/fuzz/$target.log"
fi
echo "$target: $executions executions, nothing found"
