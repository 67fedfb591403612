# A session with the browser in Xvfb: real key strokes and clicks, a picture of each step, and a look at what arrived
# at the simulated device. Sourced by demo.sh, whose variables it uses.
# SPDX-License-Identifier: MIT

pictures=0

# The screen, with a window manager and the browser on it.
start_browser() {
    # For User Mode Linux: a number of our own, since Xvfb would take the host's displays for dead ones and remove them;
    # and no scheduling by a timer, whose signals can come faster there than a new process is made.
    local display=$((RANDOM + 100))
    Xvfb ":$display" -displayfd 7 -screen 0 1280x800x24 -nolisten tcp -dumbSched 7> "$demo/display" 2> "$demo/xvfb.log" &
    started+=($!)
    wait_for 20 test -s "$demo/display" || { cat "$demo/xvfb.log"; fail "Xvfb did not start"; }
    export DISPLAY=":$display" QT_QPA_PLATFORM=xcb
    unset WAYLAND_DISPLAY
    openbox > "$demo/openbox.log" 2>&1 &
    started+=($!)
    wait_for 20 eval 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' || fail "the window manager did not start"
    build/release/src/velmora > "$demo/velmora.log" 2>&1 &
    browser=$!
    started+=("$browser")
}

# window TITLE: waits until a window with exactly this title has the keyboard.
window() {
    activate() {
        [ "$(xdotool getactivewindow getwindowname)" = "$1" ] && return
        xdotool search --onlyvisible --limit 1 --name "^$(sed 's/[^a-zA-Z0-9 ]/[&]/g' <<< "$1")\$" windowactivate
        return 1
    }
    wait_for 20 activate "$1" || { picture "missing"; fail "no window \"$1\" came up"; }
}

press() { xdotool key --clearmodifiers --delay 30 "$@"; }
enter() { xdotool type --clearmodifiers --delay 10 "$1"; }
# click X Y: in the window that has the keyboard.
click() { xdotool mousemove --window "$(xdotool getactivewindow)" "$1" "$2" click 1; }

# picture NAME: of the whole screen, when it has come to rest.
picture() {
    pictures=$((pictures + 1))
    local file
    file=$(printf '%s/%02d-%s.png' "$demo" "$pictures" "$1")
    at_rest() {
        import -silent -window root -define png:exclude-chunks=date,time "png:$file.new"
        if cmp -s "$file.new" "$file"; then rm "$file.new"; else mv "$file.new" "$file"; return 1; fi
    }
    wait_for 5 at_rest || true
    echo "  ${file#"$PWD"/}"
}

# arrived PATTERN [TIMES]: waits until the device's log shows this, so many times.
arrived() {
    count_in_log() { [ "$(grep -cE "$1" "$simulator_log")" -ge "$2" ]; }
    wait_for 20 count_in_log "$1" "${2:-1}" || { picture "missing"; fail "the device never saw: $1"; }
}

# select_object TEXT: finds an item of the tree by its first characters and selects it. The tree forgets the characters
# of a search after a pause, which this waits for.
select_object() {
    sleep 1
    enter "$1"
    press Return
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

# The modes share their letters with two menus: from octal, the cursor keys reach the others.
read_in_all_modes() {
    click 60 120 # somewhere in the tree; its entry is read at once
    arrived "node $node read "
    select_object "1008"
    arrived "node $node read 0x1008 0x00 d = \"Velmora Demo I/O\""
    picture text
    select_object "1017"
    arrived "node $node read 0x1017 0x00 u16 = 0x03E8"
    picture hexadecimal
    press alt+o alt+r
    arrived "node $node read 0x1017 0x00 u16 = 0x03E8" 2
    picture octal
    press alt+o
    sleep 0.5 # the time of the button's animated click
    press Left alt+r
    arrived "node $node read 0x1017 0x00 u16 = 0x03E8" 3
    picture decimal
}

send_values() {
    press alt+v
    enter "1234"
    press alt+s
    arrived "node $node write 0x1017 0x00 u16 0x04D2 = OK"
    picture sent
    press alt+r
    arrived "node $node read 0x1017 0x00 u16 = 0x04D2"
    picture "read-back"
    press alt+v ctrl+a
    enter "twelve"
    press Return
    box "Velmora - Send parameter" "wrong-value"
    click 60 80
    select_object "1000"
    arrived "node $node read 0x1000 0x00 u32 = 0x000F0191"
    press alt+v ctrl+a
    enter "1"
    press Return
    arrived "node $node write 0x1000 0x00 u32 0x00000001 = ERROR: 0x06010002"
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
    press ctrl+q
    wait "$browser" || fail "the browser ended with $?"
    if ! $can; then arrived "client 1 disconnected"; fi
    echo "The device saw the reads and writes; the value sent reads back."
}
