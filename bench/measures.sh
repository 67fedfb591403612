# What bench.sh measures: each function sets `ours` and `bare`; the latter is empty if there is nothing to compare with.
# While `repeating` is true, nothing is taken from an earlier measurement. Sourced, not run.
# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 # variables of bench.sh
programs=build/release/bench
count=$programs/velmora-count
bytes_of_long_sheet=100000000

calculate() { awk "BEGIN { printf \"%.2f\", $1 }"; }
is_true() { awk "BEGIN { exit !($1) }"; }

real_sheets=()
for file in ../shared/eds/*.[ed][dc][sf]; do
    [ ! -e "$file" ] || real_sheets+=("$file")
done

# sheet NAME: sets `file` to a data sheet: generated with that many objects, of 100 MB, a file that is there, or to all
# real ones that load, with blanks between them.
sheet() {
    file=$scratch/$1.eds
    case "$1" in
        */*) [ -r "$1" ] || fail "$1 cannot be read"; file=$1 ;;
        real)
            file=''
            local sheet
            for sheet in "${real_sheets[@]}"; do
                cp "$sheet" "$scratch/real${#file}.eds" # a path without blanks
                if "$count" load "$scratch/real${#file}.eds"; then
                    file+=" $scratch/real${#file}.eds"
                else
                    echo "left out, since it does not load: $sheet" >&2
                fi
            done ;;
        line) [ -e "$file" ] ||
            { echo '[FileInfo]' && head -c $bytes_of_long_sheet /dev/zero | tr '\0' ';'; } > "$file" ;;
        comments) [ -e "$file" ] || awk -v size=$bytes_of_long_sheet 'BEGIN {
            print "[FileInfo]"; line = "; a comment that is as long as most lines are"
            for (; size > 0; size -= length(line) + 1) print line }' > "$file" ;;
        *) [ -e "$file" ] || "$count" write "$file" "$1" ;;
    esac
}

# quietly COMMAND...: what it says besides its output is shown only if it fails.
quietly() {
    "$@" 2> "$scratch/log" || { cat "$scratch/log" >&2; fail "this failed: $*"; }
}

# two_numbers COMMAND...: takes both from its output.
two_numbers() {
    local numbers
    numbers=$(quietly "$@") || exit
    read -r ours bare <<< "$numbers"
}

# limited COMMAND...: ends one that would hang; no busy machine takes that long.
limited() { timeout 1800 "$@"; }

# instructions COMMAND...: prints how many it takes.
instructions() {
    local log=$scratch/callgrind.log
    limited valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" > "$log" 2>&1 ||
        { cat "$log" >&2; fail "this failed under valgrind: $*"; }
    sed -n 's/^==[0-9]*== Collected : //p' "$log" | grep -E '^[0-9]+$' || fail "valgrind has counted nothing"
}

# shellcheck disable=SC2086 # there may be several files
load_instructions() {
    local start
    sheet "$1"
    start=$(instructions "$count" nothing $file)
    ours=$(instructions "$count" load $file)
    bare=$(instructions "$count" lines $file)
    ours=$((ours - start)) bare=$((bare - start))
}
# shellcheck disable=SC2086
check_instructions() {
    local start
    sheet "$1"
    start=$(instructions "$count" nothing $file)
    ours=$(instructions "$count" check $file)
    bare=$(instructions "$count" load $file)
    ours=$((ours - start)) bare=$((bare - start))
}
# shellcheck disable=SC2086
kept_memory() { sheet "$1"; two_numbers "$count" kept $file; }
# shellcheck disable=SC2086
peak_memory() { sheet "$1"; two_numbers "$count" peak $file; }
real_load_times() { sheet real; VELMORA_BENCH_SHEETS=$file pair load/named; }

process_peak() {
    sheet "$1"
    two_numbers $programs/velmora-child memory 3 "$count" load "$file" -- "$count" nothing "$file"
    rm "$file" # it is large
}

program_size() {
    strip -o "$scratch/velmora" build/release/src/velmora
    ours=$(stat -c %s "$scratch/velmora")
    bare=''
}

codec_instructions() {
    local runs=20 start
    start=$(instructions "$count" "$1" "$2" 0)
    ours=$(instructions "$count" "$1" "$2" $runs)
    ours=$(((ours - start) / runs)) bare=$2
}

# The programs end by a plugin as soon as they are painted.
started() {
    QT_PLUGIN_PATH=$PWD/$programs/plugins QT_QPA_GENERIC_PLUGINS=velmora-bench-end "$@"
}
start_cost() {
    started two_numbers limited $programs/velmora-child "$1" 20 build/release/src/velmora -- $programs/velmora-bare
}
start_instructions() {
    started quietly limited build/release/src/velmora # brings the cache of the fonts up to date, which takes long
    ours=$(started instructions build/release/src/velmora)
    bare=$(started instructions $programs/velmora-bare)
}

pair_instructions() {
    quietly limited $programs/velmora-bench --once "$1" ours # as above
    ours=$(instructions --collect-atstart=no $programs/velmora-bench --once "$1" ours)
    bare=$(instructions --collect-atstart=no $programs/velmora-bench --once "$1" bare)
}

# pair NAME: microseconds or items per second, as velmora-bench reports them.
pair() {
    run_pairs "$1" "$scratch/pair.json"
    take_counters "$1" "$scratch/pair.json"
}

# can_pair NAME: the same where vcan0 is. All of them run at once, since it may take long to get there, and on one
# processor: the times would be those of the system that moves User Mode Linux from one to the other.
can_pair() {
    local results=$scratch/can.json processor
    processor=$(taskset -pc $$ | sed 's/.*[^0-9]//')
    if $repeating; then
        results=$scratch/pair.json
        run_pairs "$1" "$results" taskset -c "$processor" scripts/vcan/with-vcan
    elif [ ! -e "$results" ]; then
        run_pairs 'can/[^/]*' "$results" taskset -c "$processor" scripts/vcan/with-vcan
    fi
    take_counters "$1" "$results"
}

# run_pairs PATTERN FILE [WRAPPER...]
run_pairs() {
    quietly "${@:3}" $programs/velmora-bench "--benchmark_filter=^$1/repeats:" "--benchmark_out=$2" \
        --benchmark_out_format=json > "$scratch/out"
}

# take_counters NAME FILE: of several repetitions the one with the median of the ratios.
take_counters() {
    local counters
    counters=$(awk -v wanted="\"$1/repeats:" -F '": |,$' '
        / "run_name": /             { found = index($2, wanted) == 1; bare = "" }
        / "run_type": "aggregate"/  { found = 0 }
        found && /"error_message": / { print "error " $2 }
        found && / "bare": /        { bare = sprintf("%.0f", $2) }
        found && / "ours": /        { printf("%.6f %.0f %s\n", bare == "" ? 0 : $2 / bare, $2, bare) }' "$2" | sort -g)
    [[ $counters != *error* ]] || fail "$1: ${counters#*error }"
    read -r _ ours bare < <(awk '{ line[NR] = $0 } END { print line[int((NR + 1) / 2)] }' <<< "$counters")
}

# growth FIRST LAST: the ratios of two rows; those that have been measured already are measured again for a repetition.
growth() {
    local id
    if $repeating || [ -z "${ratios[$1]:-}" ] || [ -z "${ratios[$2]:-}" ]; then
        for id in "$@"; do
            measure "${hows[$id]:?}"
            ratios["$id"]=$(calculate "$ours / $bare")
        done
    fi
    ours=${ratios[$2]} bare=${ratios[$1]}
}
