# Completion of velmora-cli for bash. Commands, options and their words are those that the program's own help names.
# SPDX-License-Identifier: MIT

# _velmora_cli_commands HELP: the names of the commands.
_velmora_cli_commands() { sed -nE '/^[Ss]ubcommands:/I,/^$/s/^  ([a-z][a-z-]*) .*/\1/p' <<< "$1"; }

# _velmora_cli_options HELP [VALUE]: the options, both spellings; with VALUE those that take one.
_velmora_cli_options() {
    sed -nE "s/^ +((-[a-zA-Z], *)?--[a-z][a-z-]*)${2:+ [A-Z]}.*/\1/p" <<< "$1" | tr -s ', ' '\n'
}

# _velmora_cli_words HELP NAME: what the help lists in braces for an option or an argument.
_velmora_cli_words() { sed -nE "s/^ +[^{]*$2 [^{ ]*\{([^}]*)\}.*/\1/p" <<< "$1" | tr ',' '\n'; }

# _velmora_cli_types HELP: the words for data types.
_velmora_cli_types() { sed -nE 's/^ +--type .*: (bool, .*)/\1/p' <<< "$1" | tr -s ', ' '\n'; }

# _velmora_cli_interfaces FOLDER: the CAN interfaces; the folder has one for each interface.
_velmora_cli_interfaces() {
    local type can=280 # ARPHRD_CAN of the kernel
    for type in "$1"/*/type; do
        [ -r "$type" ] && [ "$(< "$type")" = "$can" ] && type=${type%/type} && echo "${type##*/}"
    done
}

# _velmora_cli_files WORD ENDING...: folders, and files whose name ends so in any case.
_velmora_cli_files() {
    local name ending
    while IFS= read -r name; do
        for ending in "${@:2}"; do
            if [ -d "$name" ] || [[ ${name,,} == *".$ending" ]]; then
                printf '%s\n' "$name"
                break
            fi
        done
    done < <(compgen -f -- "$1")
}

# _velmora_cli PROGRAM: called by the shell.
_velmora_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' help='' option='' arguments=0 place from=() files=() name
    COMPREPLY=()
    help=$("$1" --help 2> /dev/null) || return 0
    # What stands before the word: the command, how many arguments, and the option that waits for a value.
    for ((place = 1; place < COMP_CWORD; ++place)); do
        name=${COMP_WORDS[place]}
        if [ "$name" = = ]; then
            continue # of --option=value
        elif [ -n "$option" ]; then
            option=''
        elif [[ $name == -* ]]; then
            _velmora_cli_options "$help" value | grep -qxF -- "$name" && option=$name
        elif [ -z "$command" ]; then
            command=$name
            help=$("$1" "$command" --help 2> /dev/null) || return 0
        else
            arguments=$((arguments + 1))
        fi
    done
    [ "$word" = = ] && word=''

    case $command:$option in
        :*) mapfile -t from < <(_velmora_cli_commands "$help"; _velmora_cli_options "$help") ;;
        *:-i | *:--interface) mapfile -t from < <(_velmora_cli_interfaces /sys/class/net) ;;
        *:-s | *:--sheet) files=(eds dcf) ;;
        *:-o | *:--output) files=(dcf csv json) ;;
        *:--type) mapfile -t from < <(_velmora_cli_types "$help") ;;
        *:--disable | *:--only) mapfile -t from < <("$1" check --rules 2> /dev/null | cut -d ' ' -f 1) ;;
        *:-*) mapfile -t from < <(_velmora_cli_words "$help" "$option") ;;
        nmt:) [ "$arguments" -eq 0 ] && mapfile -t from < <(_velmora_cli_words "$help" command)
            [ "$arguments" -eq 1 ] && from=(all) ;;
        check: | list: | diff:) files=(eds dcf) ;;
        compare: | restore:) files=(eds dcf csv json) ;;
    esac
    if [ -n "$command" ] && [ -z "$option" ] && [[ $word == -* ]]; then
        mapfile -t from < <(_velmora_cli_options "$help")
        files=()
    fi
    if [ ${#files[@]} -gt 0 ]; then
        compopt -o filenames 2> /dev/null
        mapfile -t COMPREPLY < <(_velmora_cli_files "$word" "${files[@]}")
    else
        for name in "${from[@]}"; do
            [[ $name == "$word"* ]] && COMPREPLY+=("$name")
        done
    fi
}

complete -F _velmora_cli velmora-cli
