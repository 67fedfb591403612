# A session with the browser in Xvfb: real key strokes and clicks, a picture of each step, and checks of what arrives at
# the simulated device. Sourced by demo.sh, whose variables it uses.
# SPDX-License-Identifier: MIT

pictures=0

# Starts an X server, a window manager and the browser.
start_browser() {
    # The display number is chosen here: inside User Mode Linux, Xvfb cannot see the host's processes and would remove
    # the locks of the host's displays. -dumbSched: no scheduling timer; inside User Mode Linux its signals can come
    # faster than a process is created. -noreset: no reset when the last client leaves, which on a busy machine would
    # disconnect a client that is just connecting. -r: no repeated keys when a busy machine handles a release late.
    local display=$((RANDOM + 100))
    start Xvfb ":$display" -displayfd 7 -screen 0 1280x800x24 -nolisten tcp -dumbSched -noreset -r 7> "$demo/display"
    wait_for test -s "$demo/display" || fail "Xvfb did not start"
    export DISPLAY=":$display" QT_QPA_PLATFORM=xcb
    unset WAYLAND_DISPLAY
    start openbox
    wait_for eval 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' || fail "the window manager did not start"
    start build/release/src/velmora
}

# window TITLE: waits until a window with exactly this title has the keyboard focus. A window manager that is still
# starting may handle a new window only at its next event: each attempt causes one, by changing a property.
window() {
    activate() {
        [ "$(xdotool getactivewindow getwindowname)" = "$1" ] && return
        xprop -root -f VELMORA_LOOK 8c -set VELMORA_LOOK 1
        xdotool search --onlyvisible --limit 1 --name "^$(sed 's/[^a-zA-Z0-9 ]/[&]/g' <<< "$1")\$" windowactivate
        return 1
    }
    wait_for activate "$1" || { picture "missing"; fail "no window \"$1\" came up"; }
}

send_input() { xdotool "$@" || fail "keys and clicks cannot be sent to the screen"; }
press() { send_input key --clearmodifiers --delay 30 "$@"; }
enter() { send_input type --clearmodifiers --delay 10 "$1"; }
# click X Y: in the window that has the keyboard focus.
click() { send_input mousemove --window "$(send_input getactivewindow)" "$1" "$2" click 1; }

# picture NAME: saves the whole screen once it does not change any more. A blinking cursor changes it all the time, so it
# is enough that the screen is as it was before.
picture() {
    pictures=$((pictures + 1))
    local file seen='' sum
    file=$(printf '%s/%02d-%s.png' "$demo" "$pictures" "$1")
    as_before() {
        import -silent -window root -define png:exclude-chunks=date,time "png:$file"
        sum="<$(cksum < "$file")>"
        [[ $seen == *"$sum"* ]] || { seen+=$sum; return 1; }
    }
    wait_limit=5 wait_for as_before || true
    echo "  ${file#"$PWD"/}"
}

times_in_log() { grep -cE "$1" "$simulator_log" || true; }

is_in_log() { [ "$(times_in_log "$1")" -ge "$2" ]; }

# wait_for_log PATTERN [TIMES]: waits until the device's log has so many lines with the pattern, by default one.
wait_for_log() {
    wait_for is_in_log "$1" "${2:-1}" || { picture "missing"; fail "missing in the device's log: $1"; }
}

# run_and_wait_for_log PATTERN COMMAND...: runs the command and waits for one more line with the pattern.
run_and_wait_for_log() {
    local pattern=$1 times
    times=$(times_in_log "$pattern")
    shift
    "$@"
    wait_for_log "$pattern" $((times + 1))
}

# select_object INDEX PATTERN: goes to a communication object by the cursor keys, presses Return and waits for one more
# line with the pattern in the device's log. Above it are the node, the first group and the objects with lower indexes.
# Typing its index would search for a part of it where a busy machine makes a pause between two characters.
select_object() {
    local above rows
    above=$(sed -nE 's/^\[([0-9A-F]{4})\].*/\1/p' "$sheet" | sort | sed "/^$1/,\$d" | wc -l)
    mapfile -t rows < <(yes Down | head -n $((2 + above)))
    run_and_wait_for_log "$2" press Home "${rows[@]}" Return
}

# The browser stores the display mode in its settings at once: 0 hexadecimal, 1 decimal, 2 octal.
display_mode_is() { grep -qxF "Settings\\Display=$1" "$XDG_CONFIG_HOME/Brask Works.conf"; }
wait_for_display_mode() {
    wait_for display_mode_is "$1" || { picture "missing"; fail "the display mode did not become $1"; }
}

# box TITLE NAME: waits for a message box, takes a picture of it and closes it.
box() {
    window "$1"
    picture "$2"
    press Return
    window "CANopen Object Browser"
}

initialise() {
    window "Initialize CAN Interface"
    press ctrl+a
    enter "$interface"
    picture interface
    press Return
    window "CANopen Object Browser - Version 0.2 Build 61"
    picture initialised
}

open_and_connect() {
    press ctrl+o
    window "Open"
    enter "$sheet"
    picture open
    press Return
    window "Connect a Node"
    press alt+n ctrl+a
    enter "$node"
    picture connect
    press alt+c
    window "CANopen Object Browser"
    picture document
}

# Alt+O selects octal. The letters of the other two modes belong to menus as well, so the cursor keys select them.
read_in_all_modes() {
    run_and_wait_for_log "node $node read " click 60 120 # any entry of the tree; it is read at once
    select_object "1008" "node $node read 0x1008 0x00 d = \"Velmora Demo I/O\""
    picture text
    local value="node $node read 0x1017 0x00 u16 = 0x03E8"
    select_object "1017" "$value"
    picture hexadecimal
    press alt+o
    wait_for_display_mode 2
    run_and_wait_for_log "$value" press alt+r
    picture octal
    press Left # the focus is still on the display mode
    wait_for_display_mode 1
    run_and_wait_for_log "$value" press alt+r
    picture decimal
}

send_values() {
    press alt+v
    enter "1234"
    run_and_wait_for_log "node $node write 0x1017 0x00 u16 0x04D2 = OK" press alt+s
    picture sent
    run_and_wait_for_log "node $node read 0x1017 0x00 u16 = 0x04D2" press alt+r
    picture "read-back"
    press alt+v ctrl+a
    enter "twelve"
    press Return
    box "Velmora - Send parameter" "wrong-value"
    click 60 80
    select_object "1000" "node $node read 0x1000 0x00 u32 = 0x000F0191"
    press alt+v ctrl+a
    enter "1"
    run_and_wait_for_log "node $node write 0x1000 0x00 u32 0x00000001 = ERROR: 0x06010002" press Return
    box "Velmora - Send parameter" "read-only"
}

show_information() {
    click 80 10
    picture device-menu
    press Down Return
    window "$sheet"
    picture device-info
    press Right Right Right
    picture file-info
    press Escape
    window "CANopen Object Browser"
    press alt+i p
    box "Velmora - Interface Properties" properties
}

play_session() {
    stage "Running a session; pictures:"
    start_browser
    initialise
    open_and_connect
    read_in_all_modes
    send_values
    show_information
    local browser=${needed[velmora]}
    unset "needed[velmora]" # it may end now
    press ctrl+q
    wait "$browser" || fail "the browser ended with status $?"
    if ! $can; then wait_for_log "client 1 disconnected"; fi
    echo "All reads and writes arrived at the device; reading returned the value that was sent."
}

play_start() {
    stage "Starting the browser"
    start_browser
    window "Initialize CAN Interface"
    echo "The first window has opened."
}
