#!/bin/bash
# Sets up what is missing, measures the program and prints one table. The rows and their aims are in bench/aims.txt.
#   ./bench.sh                 everything, and writes docs/performance.md
#   ./bench.sh --counted       only what counts instructions and bytes; takes less than two minutes
#   ./bench.sh --check         ends with 1 if a row misses its aim
#   ./bench.sh --rows PATTERN  only the rows with such an id, for example 'load-*'; with what they are compared with
#   ./bench.sh --aims FILE     the rows of another file
# A row that misses its aim is measured up to three times more.
# SPDX-License-Identifier: MIT
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

usage="usage: ./bench.sh [--counted] [--check] [--rows PATTERN] [--aims FILE]"
counted=false check=false pattern='*' aims=bench/aims.txt page=''
[ $# -gt 0 ] || page=docs/performance.md
while [ $# -gt 0 ]; do
    case "$1" in
        --counted) counted=true ;;
        --check) check=true ;;
        --rows) pattern=${2?$usage}; shift ;;
        --aims) aims=${2?$usage}; shift ;;
        *) echo "$usage" >&2; exit 2 ;;
    esac
    shift
done
[ -r "$aims" ] || fail "$aims cannot be read"
mkdir -p build
scratch=$(mktemp -d build/bench.XXXXXX)
trap 'rm -rf "$scratch"' EXIT
export LC_ALL=C.UTF-8 QT_HASH_SEED=0 # counts are the same in every run
program=build/bench/bench/velmora-count
repetitions=3
bytes_of_long_sheet=100000000

calculate() { awk "BEGIN { printf \"%.2f\", $1 }"; }
is_true() { awk "BEGIN { exit !($1) }"; }
thousands() { sed -E ':next; s/^([0-9]+)([0-9]{3})/\1,\2/; t next' <<< "$1"; }

# sheet NAME: sets `file` to a data sheet: generated with that many objects, of 100 MB, or a file that is there.
sheet() {
    file=$scratch/$1.eds
    case "$1" in
        */*) file=$1; [ -r "$file" ] || fail "$file cannot be read" ;;
        line) [ -e "$file" ] ||
            { echo '[FileInfo]' && head -c $bytes_of_long_sheet /dev/zero | tr '\0' ';'; } > "$file" ;;
        comments) [ -e "$file" ] || awk -v size=$bytes_of_long_sheet 'BEGIN {
            print "[FileInfo]"; line = "; a comment that is as long as most lines are"
            for (; size > 0; size -= length(line) + 1) print line }' > "$file" ;;
        *) [ -e "$file" ] || "$program" write "$file" "$1" ;;
    esac
}

# instructions ARGUMENT...: prints how many instructions velmora-count takes.
instructions() {
    local log=$scratch/callgrind.log
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" > "$log" 2>&1 ||
        { cat "$log" >&2; fail "velmora-count $* failed under valgrind"; }
    sed -n 's/^==[0-9]*== Collected : //p' "$log" | grep -E '^[0-9]+$' || fail "valgrind has counted nothing"
}

# print_of ARGUMENT...: what velmora-count prints.
print_of() { "$program" "$@" || fail "velmora-count $* failed"; }

# The measures. Each sets `ours` and `bare`; the latter is empty if there is nothing to compare with.
load_instructions() {
    local start
    sheet "$1"
    start=$(instructions nothing "$file")
    ours=$(instructions load "$file")
    bare=$(instructions lines "$file")
    ours=$((ours - start)) bare=$((bare - start))
}

two_numbers() {
    sheet "$2"
    local numbers
    numbers=$(print_of "$1" "$file")
    read -r ours bare <<< "$numbers"
}
load_times() { two_numbers times "$1"; }
kept_memory() { two_numbers kept "$1"; }
peak_memory() { two_numbers peak "$1"; }

process_peak() {
    sheet "$1"
    ours=$(print_of process-peak "$file")
    bare=$(print_of nothing-peak "$file")
    rm "$file" # it is large
}

program_size() {
    strip -o "$scratch/velmora" build/release/src/velmora
    ours=$(stat -c %s "$scratch/velmora")
    bare=''
}

codec_instructions() {
    local runs=20 start
    start=$(instructions "$1" "$2" 0)
    ours=$(instructions "$1" "$2" $runs)
    ours=$(((ours - start) / runs)) bare=$2
}

codec_rate() { ours=$(print_of "$1" "$2"); bare=''; }

# growth FIRST LAST: the ratios of two rows; those that have been measured already are measured again for a repetition.
growth() {
    local id
    if $repeating || [ -z "${ratios[$1]:-}" ] || [ -z "${ratios[$2]:-}" ]; then
        for id in "$@"; do
            measure "${hows[$id]:?}"
            ratios[$id]=$(calculate "$ours / $bare")
        done
    fi
    ours=${ratios[$2]} bare=${ratios[$1]}
}

# measure HOW: runs a measure and makes sure that it has given numbers.
measure() {
    $1
    [[ $ours =~ ^-?[0-9.]+$ && ($bare = '' || $bare =~ ^[0-9.]*[1-9][0-9.]*$) ]] ||
        fail "$1 gives \"$ours\" and \"$bare\""
}

# has_missed ALLOWED: compares `ours` and `bare` with a text such as "3 times".
has_missed() {
    [[ $1 =~ ^([0-9.]+\ (times|more|in\ all))?$ ]] || fail "$aims: \"$1\" is no aim"
    [[ $1 != *' times' && $1 != *' more' || -n $bare ]] || fail "$aims: \"$1\" has nothing to compare with"
    case "$1" in
        '') return 1 ;;
        *' times') is_true "$ours > ${1%% *} * $bare" ;;
        *' more') is_true "$ours - $bare > ${1%% *}" ;;
        *' in all') is_true "$ours > ${1%% *}" ;;
    esac
}

declare -A hows=() ratios=()
table=() reasons=() missed=() group='' before=''

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
    if [ -n "$limit" ]; then
        reasons+=("$what: the aim is $(thousands "$aim"), the limit $(thousands "$limit"). $reason")
    fi
    table+=("$what|$(thousands "$ours")|$(thousands "$bare")|$ratio|$grown|$(thousands "$allowed")|$verdict")
}

# Columns as wide as their widest cell, numbers to the right.
print_table() {
    printf '%s\n' "Measure; compared with|Ours|Bare|Ratio|Growth|At most|Aim" "${table[@]}" | awk -F'|' '
        { for (i = 1; i <= NF; ++i) { cell[NR, i] = $i; if (length($i) > width[i]) width[i] = length($i) } }
        END {
            for (row = 1; row <= NR; ++row) {
                for (i = 1; i <= NF; ++i)
                    printf(i > 1 && i < 6 ? "| %*s " : "| %-*s ", width[i], cell[row, i])
                print "|"
                if (row > 1) continue
                for (i = 1; i <= NF; ++i) {
                    line = sprintf("%*s", width[i] + 1, ""); gsub(/ /, "-", line)
                    printf("|%s%s", line, i > 1 && i < 6 ? ":" : "-")
                }
                print "|"
            }
        }'
}

print_machine() {
    local processor
    processor=$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)
    printf -- '- Machine: %s, %s cores\n' "${processor:-unknown processor ($(uname -m))}" "$(nproc)"
    printf -- '- Versions: %s, %s, Qt %s, %s\n' "$(. /etc/os-release; echo "$PRETTY_NAME")" \
        "$(find_gcc) $("$(find_gcc)" -dumpfullversion)" "$("$program" qt-version)" "$(valgrind --version)"
    printf -- '- Date: %s\n' "$(date +%F)"
}

print_reasons() {
    [ ${#reasons[@]} -gt 0 ] || return 0
    printf '\nLimits instead of aims:\n\n'
    printf -- '- %s\n' "${reasons[@]}"
}

print_page() {
    cat << 'PAGE'
# Performance

`./bench.sh` writes this page. [bench/aims.txt](../bench/aims.txt) has the aims; `./bench.sh --check` compares.

"Bare" is what the measure is compared with, in the same run. "Growth" is the ratio divided by that of the size before.
Instructions are counted by callgrind, less those of the start of the program. Microseconds are the least of runs that
alternate. Bytes kept are those that malloc has handed out. Peaks are resident memory (`VmHWM`), for "peak while
loading" its growth from before the load. A generated object has five entries and some 600 bytes.

PAGE
    print_machine
    echo
    print_table
    print_reasons
}

install_missing "${build_packages[@]}" "${bench_packages[@]}"
build release velmora
build bench velmora-count
stage "Measuring"
while IFS='|' read -r id when how what aim limit reason; do
    case "$id" in ''|'#'*) continue ;; esac
    hows[$id]=$how
    if $counted && [ "$when" != counted ]; then continue; fi
    # shellcheck disable=SC2053 # the pattern is one
    [[ $id == $pattern ]] || continue
    add_row "$id" "$how" "$what" "$aim" "$limit" "$reason"
done < "$aims"
for file in share/velmora/*.eds ../shared/eds/*.[ed][dc][sf]; do
    name=${file##*/}
    # shellcheck disable=SC2053
    [[ real-$name == $pattern && -e $file ]] || continue
    cp "$file" "$scratch/real.eds" # a path without blanks
    if "$program" load "$scratch/real.eds"; then
        add_row "real-$name" "kept_memory $scratch/real.eds" "bytes kept of $name; size of the file"
    else
        echo "real-$name: left out, it is no sheet that loads" >&2
    fi
done
[ ${#table[@]} -gt 0 ] || fail "no rows"
stage "Performance"
print_table
print_reasons
if [ -n "$page" ]; then
    print_page > "$scratch/page"
    cp "$scratch/page" "$page"
fi
[ ${#missed[@]} -eq 0 ] || echo "missed: ${missed[*]}"
if $check && [ ${#missed[@]} -gt 0 ]; then exit 1; fi
