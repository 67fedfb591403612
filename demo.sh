#!/bin/bash
# Builds the browser and the simulator, starts a simulated device and the browser, and says what to do next.
# Without a display, or with --headless, it plays that session by itself in Xvfb and checks what arrived at the device.
#   ./demo.sh [--headless]
# SPDX-License-Identifier: MIT
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

headless=false
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || headless=true
case "${1:-}" in
    "") ;;
    --headless) headless=true ;;
    *) echo "usage: ./demo.sh [--headless]" >&2; exit 2 ;;
esac

demo=$PWD/build/demo
sheet=$PWD/share/velmora/velmora-demo.eds
node=5
simulator_log=$demo/simulator.log
started=()

# Ends every process that this script has started, the last one first.
finish() {
    local n
    for ((n = ${#started[@]} - 1; n >= 0; n--)); do
        kill "${started[n]}" 2> /dev/null || true
        wait "${started[n]}" 2> /dev/null || true
    done
}
trap finish EXIT
trap 'exit 1' INT TERM

# wait_for SECONDS COMMAND...: tries the command until it succeeds, at most so long.
wait_for() {
    local tries=$(($1 * 20))
    shift
    until "$@" > /dev/null 2>&1; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || return 1
        sleep 0.05
    done
}

# The simulator serves its gateway or has ended.
simulator_decided() { grep -q 'gateway on .* port [0-9]' "$simulator_log" || ! kill -0 "$simulator"; }

# Starts the simulator on the gateway's usual port, or on a free one when that is taken; sets `port`.
start_simulator() {
    local wish
    for wish in 60000 0; do
        build/release/sim/velmora-sim --gateway "$wish" --node "$node=$sheet" -v > "$simulator_log" 2>&1 &
        simulator=$!
        started+=("$simulator")
        wait_for 10 simulator_decided || break
        port=$(sed -n 's/.*gateway on .* port \([0-9]*\).*/\1/p' "$simulator_log")
        [ -z "$port" ] || return 0
    done
    cat "$simulator_log"
    fail "the simulator did not start"
}

# Settings of the demonstration's own: the gateway in the interface history, the sample sheet in the recent files.
write_settings() {
    export XDG_CONFIG_HOME=$demo/settings
    mkdir -p "$XDG_CONFIG_HOME"
    local quoted=${sheet//\\/\\\\}
    printf '%s\n' '[CANopen%20Object%20Browser]' "Recent%20File%20List\\File1=\"${quoted//\"/\\\"}\"" \
        "Used%20Interfaces\\Interface1=localhost:$port" > "$XDG_CONFIG_HOME/Brask Works.conf"
}

mkdir -p build
install_missing "${build_packages[@]}"
if $headless; then install_missing "${demo_packages[@]}"; fi
build release
rm -rf "$demo"
mkdir -p "$demo"
stage "Starting the simulated device"
start_simulator
write_settings
echo "node $node on the gateway localhost:$port, from ${sheet#"$PWD"/}"

if $headless; then
    . scripts/headless-session.sh
    play_session
else
    cat << END

Three steps in the browser:
  1. Press OK to initialise the interface localhost:$port.
  2. File, Recently used, and the sample sheet velmora-demo.eds.
  3. Double-click Node $node and select objects: their values are read from the device.

The device's log is in ${simulator_log#"$PWD"/}. It ends with the browser.
END
    build/release/src/velmora &
    started+=("$!")
    wait "$!" # in the background, so that ending this script ends the browser, too
fi
