# A session with the browser in Xvfb: real key strokes and clicks, a picture of each step, and a look at what arrived
# at the simulated device. Sourced by demo.sh, whose variables it uses.
# SPDX-License-Identifier: MIT

pictures=0

# The screen, with a window manager and the browser on it.
start_browser() {
    # For User Mode Linux: a number of our own, since Xvfb would take the host's displays for dead ones and remove them;
    # and no scheduling by a timer, whose signals can come faster there than a new process is made. On a busy machine:
    # no starting over when the last client leaves (-noreset), which cuts off whoever is just coming: a window manager
    # ends then; and no keys that repeat because their release is late (-r).
    local display=$((RANDOM + 100))
    start Xvfb ":$display" -displayfd 7 -screen 0 1280x800x24 -nolisten tcp -dumbSched -noreset -r 7> "$demo/display"
    wait_for test -s "$demo/display" || fail "Xvfb did not start"
    export DISPLAY=":$display" QT_QPA_PLATFORM=xcb
    unset WAYLAND_DISPLAY
    start openbox
    wait_for eval 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' || fail "the window manager did not start"
    start build/release/src/velmora
}

# window TITLE: waits until a window with exactly this title has the keyboard. A window manager that has read a new
# window's request while it was still starting sleeps on it until the next event: each look is one.
window() {
    activate() {
        [ "$(xdotool getactivewindow getwindowname)" = "$1" ] && return
        xprop -root -f VELMORA_LOOK 8c -set VELMORA_LOOK 1
        xdotool search --onlyvisible --limit 1 --name "^$(sed 's/[^a-zA-Z0-9 ]/[&]/g' <<< "$1")\$" windowactivate
        return 1
    }
    wait_for activate "$1" || { picture "missing"; fail "no window \"$1\" came up"; }
}

hand() { xdotool "$@" || fail "no keys and clicks reach the screen"; }
press() { hand key --clearmodifiers --delay 30 "$@"; }
enter() { hand type --clearmodifiers --delay 10 "$1"; }
# click X Y: in the window that has the keyboard.
click() { hand mousemove --window "$(hand getactivewindow)" "$1" "$2" click 1; }

# picture NAME: of the whole screen, when it has come to rest.
picture() {
    pictures=$((pictures + 1))
    local file
    file=$(printf '%s/%02d-%s.png' "$demo" "$pictures" "$1")
    at_rest() {
        import -silent -window root -define png:exclude-chunks=date,time "png:$file.new"
        if cmp -s "$file.new" "$file"; then rm "$file.new"; else mv "$file.new" "$file"; return 1; fi
    }
    patience=5 wait_for at_rest || true # a cursor that blinks never rests
    echo "  ${file#"$PWD"/}"
}

times_in_log() { grep -cE "$1" "$simulator_log" || true; }

shows_in_log() { [ "$(times_in_log "$1")" -ge "$2" ]; }

# arrived PATTERN [TIMES]: waits until the device's log shows this, so many times.
arrived() {
    wait_for shows_in_log "$1" "${2:-1}" || { picture "missing"; fail "the device never saw: $1"; }
}

# arrives PATTERN COMMAND...: runs the command and waits until the device's log shows this once more than before.
arrives() {
    local pattern=$1 times
    times=$(times_in_log "$pattern")
    shift
    "$@"
    arrived "$pattern" $((times + 1))
}

# select_object TEXT PATTERN: finds an item of the tree by its first characters and selects it, until the device's log
# shows PATTERN once more. The tree forgets the characters of a search after a pause: this waits for it before the
# first one, and tries again where a busy machine has made one between two characters.
select_object() {
    local wanted
    wanted=$(($(times_in_log "$2") + 1))
    for _ in {1..20}; do
        sleep 1
        enter "$1"
        press Return
        if patience=30 wait_for shows_in_log "$2" "$wanted"; then return; fi
    done
    arrived "$2" "$wanted"
}

# The browser keeps the display mode in its settings at once: 0 hexadecimal, 1 decimal, 2 octal.
display_mode_is() { grep -qxF "Settings\\Display=$1" "$XDG_CONFIG_HOME/Brask Works.conf"; }
display_mode() { wait_for display_mode_is "$1" || { picture "missing"; fail "the display mode never became $1"; }; }

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

# The modes share their letters with two menus: from octal, the cursor keys reach the others.
read_in_all_modes() {
    arrives "node $node read " click 60 120 # somewhere in the tree; its entry is read at once
    select_object "1008" "node $node read 0x1008 0x00 d = \"Velmora Demo I/O\""
    picture text
    local value="node $node read 0x1017 0x00 u16 = 0x03E8"
    select_object "1017" "$value"
    picture hexadecimal
    press alt+o
    display_mode 2
    arrives "$value" press alt+r
    picture octal
    press Left # Read has not taken the focus
    display_mode 1
    arrives "$value" press alt+r
    picture decimal
}

send_values() {
    press alt+v
    enter "1234"
    arrives "node $node write 0x1017 0x00 u16 0x04D2 = OK" press alt+s
    picture sent
    arrives "node $node read 0x1017 0x00 u16 = 0x04D2" press alt+r
    picture "read-back"
    press alt+v ctrl+a
    enter "twelve"
    press Return
    box "Velmora - Send parameter" "wrong-value"
    click 60 80
    select_object "1000" "node $node read 0x1000 0x00 u32 = 0x000F0191"
    press alt+v ctrl+a
    enter "1"
    arrives "node $node write 0x1000 0x00 u32 0x00000001 = ERROR: 0x06010002" press Return
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
    stage "Playing a session; pictures:"
    start_browser
    initialise
    open_and_connect
    read_in_all_modes
    send_values
    show_information
    local browser=${needed[velmora]}
    unset "needed[velmora]" # it may end now
    press ctrl+q
    wait "$browser" || fail "the browser ended with $?"
    if ! $can; then arrived "client 1 disconnected"; fi
    echo "The device saw the reads and writes; the value sent reads back."
}

play_start() {
    stage "Starting the browser"
    start_browser
    window "Initialize CAN Interface"
    echo "Its first window is there."
}
