#!/bin/bash
# Sets up what is missing, measures the programs and prints one table. The rows and their aims are in bench/aims.txt.
#   ./bench.sh                 everything, and writes docs/performance.md, also with --check
#   ./bench.sh --counted       only what counts instructions and bytes; takes less than two minutes
#   ./bench.sh --check         ends with 1 if a row misses its aim
#   ./bench.sh --rows PATTERN  only the rows with such an id, for example 'load-*'; with what they are compared with
#   ./bench.sh --aims FILE     the rows of another file
# A row that misses its aim is measured up to three times more.
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh
. bench/measures.sh
. bench/report.sh

usage="usage: ./bench.sh [--counted] [--check] [--rows PATTERN] [--aims FILE]"
counted=false check=false pattern='*' aims=bench/aims.txt page=docs/performance.md
while [ $# -gt 0 ]; do
    case "$1" in
        --counted) counted=true page='' ;;
        --check) check=true ;;
        --rows) pattern=${2?$usage} page=''; shift ;;
        --aims) aims=${2?$usage} page=''; shift ;;
        *) echo "$usage" >&2; exit 2 ;;
    esac
    shift
done
[ -r "$aims" ] || fail "$aims cannot be read"
repetitions=3
mkdir -p build
scratch=$(mktemp -d build/bench.XXXXXX)
trap 'rm -rf "$scratch"' EXIT
# Counts are the same in every run, whatever other programs do to the cache of the fonts, and the settings of the user
# are left alone.
export LC_ALL=C.UTF-8 QT_HASH_SEED=0 QT_QPA_PLATFORM=offscreen FONTCONFIG_FILE=$PWD/$scratch/fonts.conf
export XDG_CONFIG_HOME=$PWD/$scratch/config XDG_CACHE_HOME=$PWD/$scratch/cache XDG_RUNTIME_DIR=$PWD/$scratch
printf '<fontconfig><cachedir prefix="xdg">fonts</cachedir><include>/etc/fonts/fonts.conf</include></fontconfig>\n' \
    > "$FONTCONFIG_FILE"

# has_missed ALLOWED: compares `ours` and `bare` with a text such as "3 times".
has_missed() {
    [[ $1 =~ ^([0-9.]+\ (times|times at least|more|in all))?$ ]] || fail "$aims: \"$1\" is no aim"
    [[ $1 != *' times'* && $1 != *' more' || -n $bare ]] || fail "$aims: \"$1\" has nothing to compare with"
    case "$1" in
        '') return 1 ;;
        *' times') is_true "$ours > ${1%% *} * $bare" ;;
        *' at least') is_true "$ours < ${1%% *} * $bare" ;;
        *' more') is_true "$ours - $bare > ${1%% *}" ;;
        *' in all') is_true "$ours > ${1%% *}" ;;
    esac
}

# measure HOW: runs a measure and makes sure that it has given numbers.
measure() {
    $1
    [[ $ours =~ ^[0-9.]*[1-9][0-9.]*$ && ($bare = '' || $bare =~ ^[0-9.]*[1-9][0-9.]*$) ]] ||
        fail "$1 gives \"$ours\" and \"$bare\""
}

declare -A hows=() ratios=()
missed=() group='' before=''

# add_row ID HOW WHAT [AIM LIMIT REASON]: measures and adds to the table.
add_row() {
    local id=$1 how=$2 what=$3 aim=${4:-} limit=${5:-} reason=${6:-}
    local allowed=${limit:-$aim} repetition repeating=false ours='' bare='' ratio='' grown='' verdict=''
    printf '%s\n' "$id" >&2
    measure "$how"
    repeating=true
    for ((repetition = 1; repetition <= repetitions; ++repetition)); do
        has_missed "$allowed" || break
        echo "$id: missed with $ours against ${bare:-nothing}, repetition $repetition" >&2
        measure "$how"
    done
    if has_missed "$allowed"; then
        verdict=missed
        missed+=("$id")
    elif [ -n "$limit" ]; then
        verdict="limit kept"
    elif [ -n "$aim" ]; then
        verdict=met
    fi
    [ -z "$bare" ] || ratio=$(calculate "$ours / $bare")
    ratios[$id]=$ratio
    if [ "${id%/*}" != "$id" ] && [ "${id%/*}" = "$group" ] && [ -n "$before" ]; then
        grown=$(calculate "$ratio / $before")
    fi
    group=${id%/*} before=$ratio
    add_to_report "$what" "$ours" "$bare" "$ratio" "$grown" "$aim" "$limit" "$verdict" "$reason"
}

install_missing "${build_packages[@]}" "${bench_packages[@]}"
way=none
if ! $counted; then
    install_missing "${can_packages[@]}"
    way=$(scripts/vcan/with-vcan --way) || way=none
fi
build bench
stage "Measuring"
[ ${#real_sheets[@]} -gt 0 ] || left_out+=("real-*, since there are no real sheets")
if [ "$way" = none ] && ! $counted; then left_out+=("can-*, since there is no vcan0"); fi
# shellcheck disable=SC2162 # a backslash joins lines
while IFS='|' read id when how what aim limit reason; do
    case "$id" in ''|'#'*) continue ;; esac
    hows[$id]=$how
    if $counted && [ "$when" != counted ]; then continue; fi
    # shellcheck disable=SC2053 # the pattern is one
    [[ $id == $pattern ]] || continue
    [[ $id != real-* || ${#real_sheets[@]} -gt 0 ]] || continue
    [[ $how != can_pair* || $way != none ]] || continue
    add_row "$id" "$how" "$what" "$aim" "$limit" "$reason"
done < "$aims"
[ "$rows" -gt 0 ] || fail "no rows"
stage "Performance"
print_table
print_reasons
print_left_out
if [ -n "$page" ]; then
    print_page > "$scratch/page"
    cp "$scratch/page" "$page"
fi
[ ${#missed[@]} -eq 0 ] || echo "missed: ${missed[*]}"
if $check && [ ${#missed[@]} -gt 0 ]; then exit 1; fi
