#!/bin/bash
# Changes the sources a little, one change at a time, and tells the changes that no test notices.
#   ./mutants.sh FILE...               all changes of these sources
#   ./mutants.sh --since origin/main   those of the lines that have changed since then
#   ./mutants.sh --sample 1000         so many of the whole of src/; --seed N chooses others
# Ends with 0 when each change that nothing noticed is listed in tests/mutants.txt.
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

mkdir -p build
install_missing git python3 mold "${build_packages[@]}" # mold: most of the time would be spent in linking
CXX=$(find_gcc) || fail "gcc $least_gcc or later is needed"
export CXX
exec python3 tests/mutants/run.py "$@"
