#!/bin/bash
# Builds the browser and the simulator, starts a simulated device and the browser, and says what to do next.
# Without a display, or with --headless, the script operates the browser in Xvfb and checks what arrives at the device.
#   ./demo.sh [--can] [--headless | --start]
# With --can the device is on the CAN interface vcan0, otherwise it is reached through a gateway. With --start the
# session without a display ends as soon as its first window is there.
# SPDX-License-Identifier: MIT
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

headless=false
start_only=false
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || headless=true
can=false
for option; do
    case $option in
        --headless) headless=true ;;
        --start) headless=true start_only=true ;;
        --can) can=true ;;
        *) echo "usage: ./demo.sh [--can] [--headless | --start]" >&2; exit 2 ;;
    esac
done
on_bus=${VELMORA_DEMO_ON_BUS:-false} # the second run of this script with --can, where vcan0 is

demo=$PWD/build/demo
if $can; then demo+=-can; fi
sheet=$PWD/share/velmora/velmora-demo.eds
node=5
simulator_log=$demo/velmora-sim.log
wait_limit=600 # seconds, far more than a busy machine needs: only ends a wait that would never end
started=()
declare -A needed=() # the programs without which the session cannot go on: process ids by name

# start COMMAND...: starts a program in the background, with its output in a log named after it; sets `process`.
start() {
    local name=${1##*/}
    "$@" > "$demo/$name.log" 2>&1 &
    process=$!
    started+=("$process")
    needed[$name]=$process
}

# Succeeds when a needed program has ended; prints its name, its status and the end of its log.
needed_program_ended() {
    local name status any=1
    for name in "${!needed[@]}"; do
        if kill -0 "${needed[$name]}" 2> /dev/null; then continue; fi
        status=0
        wait "${needed[$name]}" || status=$?
        tail -n 20 "$demo/$name.log"
        echo "demo.sh: $name ended with status $status" >&2
        unset "needed[$name]"
        any=0
    done
    return $any
}

# After a failure: prints the needed programs that end within 5 seconds. A window or key often fails because a program
# is just ending.
print_ended_programs() {
    local end=$((SECONDS + 5))
    while [ ${#needed[@]} -gt 0 ] && ((SECONDS < end)); do
        needed_program_ended || sleep 0.05
    done
}

# Ends every process that this script has started, the last one first.
finish() {
    local status=$? n
    [ $status -eq 0 ] || print_ended_programs
    for ((n = ${#started[@]} - 1; n >= 0; n--)); do
        kill "${started[n]}" 2> /dev/null || true
        wait "${started[n]}" 2> /dev/null || true
    done
}
trap finish EXIT
trap 'needed=(); exit 1' INT TERM

# wait_for COMMAND...: tries the command until it succeeds, at most `wait_limit` seconds. Ends the script as soon as a
# needed program has ended.
wait_for() {
    local end=$((SECONDS + wait_limit))
    until "$@" > /dev/null 2>&1; do
        ! needed_program_ended || exit 1
        ((SECONDS < end)) || return 1
        sleep 0.05
    done
}

# Succeeds when the simulator is on the bus or listening as a gateway, or has ended.
simulator_started_or_ended() { grep -q '^velmora-sim: .* on ' "$simulator_log" || ! kill -0 "$process"; }

# Starts the simulator on vcan0, or as a gateway on port 60000, or on a free port when that is taken; sets `interface`
# to the name that the browser needs.
start_simulator() {
    local place places=("--gateway 60000" "--gateway 0") port
    if $can; then places=("--can vcan0"); fi
    for place in "${places[@]}"; do
        # shellcheck disable=SC2086 # an option and its value
        start build/release/sim/velmora-sim $place --node "$node=$sheet" -v
        unset "needed[velmora-sim]" # when it ends because the port is taken, the next one is tried
        wait_for simulator_started_or_ended || break
        port=$(sed -n 's/.*gateway on .* port \([0-9]*\).*/\1/p' "$simulator_log")
        interface=$(sed -n 's/.*CAN on \([^ ]*\).*/\1/p' "$simulator_log")${port:+localhost:$port}
        [ -z "$interface" ] || { needed[velmora-sim]=$process; return 0; }
    done
    cat "$simulator_log"
    fail "the simulator did not start"
}

# Settings for the demonstration only: the interface in the history, the sample sheet in the recent files.
write_settings() {
    export XDG_CONFIG_HOME=$demo/settings
    mkdir -p "$XDG_CONFIG_HOME"
    local quoted=${sheet//\\/\\\\}
    printf '%s\n' '[CANopen%20Object%20Browser]' "Recent%20File%20List\\File1=\"${quoted//\"/\\\"}\"" \
        "Used%20Interfaces\\Interface1=$interface" > "$XDG_CONFIG_HOME/Brask Works.conf"
}

# A network namespace reaches displays with a local socket, but not over TCP; User Mode Linux reaches none.
can_show_windows() { [ "$1" = namespace ] && [[ ${DISPLAY:-} == :* || -n ${WAYLAND_DISPLAY:-} ]]; }

# Runs this script again where vcan0 exists; everything is built by then.
enter_bus() {
    local way
    export VELMORA_VCAN_INTERFACES=vcan0
    scripts/vcan/with-vcan --way > /dev/null 2>&1 || install_missing "${can_packages[@]}"
    way=$(scripts/vcan/with-vcan --way)
    stage "Entering a CAN bus: $way"
    if [ "$way" != host ] && ! $headless && ! can_show_windows "$way"; then
        echo "Windows cannot be shown from where vcan0 is ($way): the session runs without a display."
        headless=true
        install_missing "${demo_packages[@]}"
    fi
    local options=(--can)
    if $start_only; then options+=(--start); elif $headless; then options+=(--headless); fi
    VELMORA_DEMO_ON_BUS=true VELMORA_VCAN_TIMEOUT=${VELMORA_VCAN_TIMEOUT:-86400} \
        exec scripts/vcan/with-vcan ./demo.sh "${options[@]}"
}

if ! $on_bus; then
    mkdir -p build
    install_missing "${build_packages[@]}"
    if $headless; then install_missing "${demo_packages[@]}"; fi
    build release
    if $can; then enter_bus; fi
fi
rm -rf "$demo"
mkdir -p "$demo"
stage "Starting the simulated device"
start_simulator
write_settings
echo "node $node on $interface, from ${sheet#"$PWD"/}"

if $headless; then
    . scripts/headless-session.sh
    if $start_only; then play_start; else play_session; fi
else
    cat << END

Three steps in the browser:
  1. Press OK to initialise the interface $interface.
  2. File, Recently used, and the sample sheet velmora-demo.eds.
  3. Double-click Node $node and select objects: their values are read from the device.

The device's log is in ${simulator_log#"$PWD"/}. Closing the browser ends the device, too.
END
    start build/release/src/velmora
    wait "$process" # the browser is in the background, so that ending this script ends it
fi
