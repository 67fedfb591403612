# What bench.sh measures: each function sets `ours` and `bare`; the latter is empty if there is nothing to compare with.
# While `repeating` is true, nothing is taken from an earlier measurement. Sourced, not run.
# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 # variables of bench.sh
programs=build/bench/bench
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
                if "$count" load "$scratch/real${#file}.eds"; then file+=" $scratch/real${#file}.eds"; fi
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

# instructions COMMAND...: prints how many it takes.
instructions() {
    local log=$scratch/callgrind.log
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" > "$log" 2>&1 ||
        { cat "$log" >&2; fail "this failed under valgrind: $*"; }
    sed -n 's/^==[0-9]*== Collected : //p' "$log" | grep -E '^[0-9]+$' || fail "valgrind has counted nothing"
}

# three_counts NOTHING OURS BARE: the instructions of commands, less those of the first.
# shellcheck disable=SC2086 # each is a command with its arguments
three_counts() {
    local start
    quietly $1 # brings the cache of the fonts up to date, which takes long
    start=$(instructions $1)
    ours=$(instructions $2)
    bare=$(instructions $3)
    ours=$((ours - start)) bare=$((bare - start))
}

load_instructions() {
    sheet "$1"
    three_counts "$count nothing $file" "$count load $file" "$count lines $file"
}
# shellcheck disable=SC2086 # there may be several files
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
    strip -o "$scratch/velmora" build/bench/src/velmora
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
    QT_PLUGIN_PATH=$PWD/$programs/plugins QT_QPA_GENERIC_PLUGINS=velmora-bench-end XDG_RUNTIME_DIR=$PWD/$scratch "$@"
}
start_cost() {
    started two_numbers $programs/velmora-child "$1" 20 build/bench/src/velmora -- $programs/velmora-bare
}
start_instructions() {
    started quietly build/bench/src/velmora # as above
    ours=$(started instructions build/bench/src/velmora)
    bare=$(started instructions $programs/velmora-bare)
}

pair_instructions() {
    local once="$programs/velmora-bench --once $1"
    three_counts "$once nothing" "$once ours" "$once bare"
}

# pair NAME: microseconds or items per second, as velmora-bench reports them.
pair() {
    run_pairs "$1" "$scratch/pair.json"
    take_counters "$1" "$scratch/pair.json"
}

# can_pair NAME: the same where vcan0 is. All of them run at once, since it may take long to get there.
can_pair() {
    local results=$scratch/can.json
    if $repeating; then
        results=$scratch/pair.json
        run_pairs "$1" "$results" scripts/vcan/with-vcan
    elif [ ! -e "$results" ]; then
        run_pairs 'can/[^/]*' "$results" scripts/vcan/with-vcan
    fi
    take_counters "$1" "$results"
}

# run_pairs PATTERN FILE [WRAPPER...]
run_pairs() {
    quietly "${@:3}" $programs/velmora-bench "--benchmark_filter=^$1/repeats:" "--benchmark_out=$2" \
        --benchmark_out_format=json > "$scratch/out"
}

# take_counters NAME FILE: the median of several repetitions.
take_counters() {
    local counters
    counters=$(awk -v wanted="\"$1/repeats:" -F '": |,$' '
        / "run_name": /         { found = index($2, wanted) == 1; median = repeated = 0 }
        / "repetitions": /      { repeated = $2 > 1 }
        / "aggregate_name": /   { median = $2 == "\"median\"" }
        found && / "error_message": / { print "error " $2; exit }
        found && (median || !repeated) && / "ours": / { ours = $2 }
        found && (median || !repeated) && / "bare": / { bare = $2 }
        END { if (ours != "") printf("%.0f %s\n", ours, bare == "" ? "" : sprintf("%.0f", bare)) }' "$2")
    [[ $counters != error* ]] || fail "$1: ${counters#error }"
    read -r ours bare <<< "$counters"
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
