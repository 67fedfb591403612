# The table and the page that bench.sh makes. Sourced, not run.
# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2154 # variables of bench.sh
rows=0 table=() reasons=() left_out=()

thousands() { sed -E ':next; s/^([0-9]+)([0-9]{3})/\1,\2/; t next' <<< "$1"; }

# in_words AIM: an aim such as "3 times" as the table shows it.
in_words() {
    case "$1" in
        '') ;;
        *' at least') echo "at least ${1%% *} times" ;;
        *) echo "at most $(thousands "$1")" ;;
    esac
}

# add_to_report WHAT OURS BARE RATIO GROWTH AIM LIMIT VERDICT REASON
add_to_report() {
    rows=$((rows + 1))
    table+=("$1|$(thousands "$2")|$(thousands "$3")|$4|$5|$(in_words "${7:-$6}")|$8")
    [ -z "$7" ] || reasons+=("$1: the aim is $(in_words "$6"), the limit $(in_words "$7"). $9")
}

# Columns as wide as their widest cell, numbers to the right.
print_table() {
    printf '%s\n' "Measure; compared with|Ours|Bare|Ratio|Growth|Aim|Result" "${table[@]}" | awk -F'|' '
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
    printf -- '- Machine: %s, %s cores; vcan0: %s\n' "${processor:-unknown processor ($(uname -m))}" "$(nproc)" \
        "$way"
    printf -- '- Versions: %s, %s, Qt %s, %s\n' "$(. /etc/os-release; echo "$PRETTY_NAME")" \
        "$(find_gcc) $("$(find_gcc)" -dumpfullversion)" "$("$count" qt-version)" "$(valgrind --version)"
    printf -- '- Date: %s\n' "$(date +%F)"
}

print_reasons() {
    [ ${#reasons[@]} -gt 0 ] || return 0
    printf '\nLimits instead of aims:\n\n'
    printf -- '- %s\n' "${reasons[@]}"
}

print_left_out() {
    [ ${#left_out[@]} -gt 0 ] || return 0
    printf '\nRows left out:\n\n'
    printf -- '- %s\n' "${left_out[@]}"
}

print_page() {
    cat << 'PAGE'
# Performance

`./bench.sh` writes this page. `bench/aims.txt` has the aims; `./bench.sh --check` compares.

"Bare" is what the measure is compared with, in the same run. "Growth" is the ratio divided by that of the size before.
Instructions are counted by callgrind, without those of the preparation. Times and rates are of the least time of runs
that alternate; those of networks are the median of five such. Bytes kept are those that malloc has handed out. Peaks
are resident memory: for "peak while loading" its growth from before the load (`VmHWM`), for processes that of the child
(`getrusage`). A generated object has five entries and some 600 bytes.

PAGE
    print_machine
    echo
    print_table
    print_reasons
    print_left_out
}
