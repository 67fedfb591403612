# Finds compilers of sufficient version. Sourced, not run.
# SPDX-License-Identifier: MIT

least_gcc=12
least_clang=14

# major_version COMMAND: prints the major version of a compiler; 0 if there is none.
major_version() {
    local version
    version=$("$1" -dumpversion 2> /dev/null) || version=0
    echo "${version%%.*}"
}

# find_compiler NAME LEAST: prints NAME if its major version is at least LEAST, else the newest NAME-N that is; fails if
# there is none.
find_compiler() {
    local name
    for name in "$1" $(compgen -c "$1-" | grep -xE '.*-[0-9]+' | sort -ruV); do
        if [ "$(major_version "$name")" -ge "$2" ]; then
            echo "$name"
            return
        fi
    done
    return 1
}

find_gcc() { find_compiler g++ "$least_gcc"; }
find_clang() { find_compiler clang++ "$least_clang"; }
