# A session without a mouse, through AT-SPI: every window, a menu's entries, help, and check marks that stay. Started by
# check-atspi: walk.py BUILD SHEET
# SPDX-License-Identifier: MIT
import re
import subprocess
import sys

import pyatspi

from reader import (Failure, check, controls, has, needed, output, popups, press, shown, wait_for, wait_for_end,
                    wait_for_node, window)

CAPTION = "CANopen Object Browser - Version 0.2 Build 61"  # until the first document
SHORT_CAPTION = "CANopen Object Browser"
INTERFACE_DIALOG = "Initialize CAN Interface"

MENUS = {"File": 6, "Device": 1, "Interface": 2, "Windows": 2, "Help": 4}  # with the entries that each has at least

# In reading order; the tree stands before the first and behind the last.
FIELDS = ["Object name:", "Object code:", "Data type:", "Compound object", "Mandatory object",
          "Parameter name:", "Data type:", "Access type:", "Value range:", "Default value:", "Mandatory entry",
          "PDO Mapping", "Enter new value:", "Send", "Parameter value:", "Read", "hexadecimal"]


def start_simulator(build, sheet):
    """Returns the process and the port of its gateway."""
    process = subprocess.Popen([f"{build}/sim/velmora-sim", "--gateway", "0", "--node", f"5={sheet}"],
                               stdout=subprocess.PIPE, text=True)
    for line in process.stdout:
        found = re.search(r"gateway on .* port (\d+)", line)
        if found:
            return process, found[1]
    raise Failure("the simulator did not start")


def wait_for_focus(top, name):
    def look():
        return next((node for node, _ in controls(top) if node.name == name and has(node, pyatspi.STATE_FOCUSED)), None)
    return wait_for(f'the focus of "{name}"', look)


def enter(field, text):
    """Puts the text into a field in place of what it holds."""
    field.queryEditableText().setTextContents(text)
    wait_for(f'"{text}"', lambda: field.queryText().getText(0, -1) == text)


def help_size(top, name):
    """The size of the help that Shift+F1 shows of the control that has the focus."""
    wait_for_focus(top, name)
    before = popups()
    press("shift+F1")
    shown_ones = wait_for(f'the help of "{name}"', lambda: popups() if len(popups()) > len(before) else None)
    press("Escape")
    wait_for(f'the end of the help of "{name}"', lambda: popups() == before)
    return next(size for size in shown_ones if size not in before)


def check_help(what, top, first, second):
    """Two controls, one Tab apart, have help of their own: its text is painted, so it is told by its size."""
    sizes = [help_size(top, first)]
    press("Tab")
    sizes.append(help_size(top, second))
    if sizes[0] == sizes[1]:
        raise Failure(f'{what}: the help of "{first}" and of "{second}" look the same: {sizes[0]}')
    print(f"{what}: Shift+F1 shows the help of the control that has the focus", flush=True)


def check_position(dialog, frame):
    """The dialog stands in the middle of the frame."""
    place = [node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS) for node in (dialog, frame)]
    middle = [(box.x + box.width / 2, box.y + box.height / 2) for box in place]
    return abs(middle[0][0] - middle[1][0]) < 60 and abs(middle[0][1] - middle[1][1]) < 60  # title bars


def first_dialog():
    dialog = window(pyatspi.ROLE_DIALOG, INTERFACE_DIALOG)
    frame = wait_for_node(pyatspi.ROLE_FRAME, CAPTION)
    check("interface dialog", dialog, 7, 5)
    wait_for("the dialog in the middle of the frame", lambda: check_position(dialog, frame))
    check_help("interface dialog", dialog, "Interface", "OK")
    press("Escape")
    wait_for_end(pyatspi.ROLE_DIALOG, INTERFACE_DIALOG)
    frame = window(pyatspi.ROLE_FRAME, CAPTION)
    check("frame", frame, 13, 4)
    return frame


def open_menu(frame, title):
    """Opens the menu of that title by F10 and the cursor keys."""
    press("F10")
    for name in MENUS:
        menu = wait_for_node(pyatspi.ROLE_POPUP_MENU, name, frame)
        if name == title:
            return menu
        press("Right")
    raise Failure(f"no menu {title}")


def leave_menu(frame, title):
    press("Escape")
    wait_for(f"the end of the menu {title}", lambda: not shown(pyatspi.ROLE_POPUP_MENU, title, frame))
    item = shown(pyatspi.ROLE_MENU_ITEM, title, shown(pyatspi.ROLE_MENU_BAR, "Menus", frame))
    wait_for(f"the focus of {title}", lambda: has(item, pyatspi.STATE_FOCUSED))
    press("Escape")
    wait_for(f"the end of the focus of {title}", lambda: not has(item, pyatspi.STATE_FOCUSED))


def menus(frame):
    for title, least in MENUS.items():
        menu = open_menu(frame, title)
        check(f"menu {title}", menu, least, 0)
        leave_menu(frame, title)


def message_box(frame, caption):
    press("F1")
    box = window(pyatspi.ROLE_ALERT, "Velmora - Help Topic")
    check("message box", box, 2, 0)
    wait_for_node(pyatspi.ROLE_LABEL, "Sorry, not realized yet!", box)
    press("Return")
    wait_for_end(pyatspi.ROLE_ALERT, "Velmora - Help Topic")
    window(pyatspi.ROLE_FRAME, caption)


def initialise(frame, port):
    open_menu(frame, "Interface")
    press("i")
    dialog = window(pyatspi.ROLE_DIALOG, INTERFACE_DIALOG)
    enter(wait_for_focus(dialog, "Interface"), f"localhost:{port}")
    press("Return")
    wait_for_end(pyatspi.ROLE_DIALOG, INTERFACE_DIALOG)
    window(pyatspi.ROLE_FRAME, CAPTION)


def open_document(sheet):
    press("ctrl+o")
    dialog = window(pyatspi.ROLE_DIALOG, "Open")
    enter(wait_for_focus(dialog, "File name:"), sheet)
    press("Return")
    dialog = window(pyatspi.ROLE_DIALOG, "Connect a Node")
    check("connect dialog", dialog, 20, 5)
    check_help("connect dialog", dialog, "Node-Id.:", "Connect")
    press("alt+n")
    node = wait_for_focus(dialog, "Node-Id.:")
    node.queryValue().currentValue = 5
    wait_for("node 5", lambda: node.queryValue().currentValue == 5)
    press("Return")
    wait_for_end(pyatspi.ROLE_DIALOG, "Connect a Node")
    return window(pyatspi.ROLE_FRAME, SHORT_CAPTION)


def document(frame):
    wait_for_focus(frame, "Objects and entries")
    check("document", frame, 40, 20)
    marks = 0
    for name in FIELDS:
        press("Tab")
        node = wait_for_focus(frame, name)
        if node.getRole() != pyatspi.ROLE_CHECK_BOX:
            continue
        marks += 1
        before = has(node, pyatspi.STATE_CHECKED)
        press("space", "Tab", "shift+Tab")  # once the focus is back, Space has had its effect
        wait_for_focus(frame, name)
        if has(node, pyatspi.STATE_CHECKED) != before:
            raise Failure(f'Space changes the check mark "{name}"')
    print(f"document: {len(FIELDS)} fields in the order of the Tab key, {marks} check marks that Space does not change",
          flush=True)


def device_info(frame, sheet):
    menu = open_menu(frame, "Device")
    wait_for_node(pyatspi.ROLE_MENU_ITEM, "Device Info", menu, [pyatspi.STATE_FOCUSED])
    press("Return")
    dialog = window(pyatspi.ROLE_DIALOG, sheet)
    for page, (least, described) in enumerate([(13, 7), (14, 8), (13, 7), (13, 7)]):
        if page:
            press("Right")
        tabs = [node for node, _ in controls(dialog) if node.getRole() == pyatspi.ROLE_PAGE_TAB]
        wait_for(f"page {page + 1}", lambda: has(tabs[page], pyatspi.STATE_FOCUSED))
        check(f"device info, page {page + 1}", dialog, least, described)
    press("Escape")
    wait_for_end(pyatspi.ROLE_DIALOG, sheet)
    window(pyatspi.ROLE_FRAME, SHORT_CAPTION)


def session(browser, port, sheet):
    frame = first_dialog()
    menus(frame)
    message_box(frame, CAPTION)
    initialise(frame, port)
    frame = open_document(sheet)
    document(frame)
    device_info(frame, sheet)
    needed.remove(browser)
    press("ctrl+q")
    if browser.wait() != 0:
        raise Failure(f"the browser ended with {browser.returncode}")


def main():
    build, sheet = sys.argv[1:]
    processes = []

    def start(*command):
        processes.append(subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        needed.append(processes[-1])
        return processes[-1]

    try:
        start("openbox")
        wait_for("the window manager", lambda: "window id" in output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))
        simulator, port = start_simulator(build, sheet)
        processes.append(simulator)
        session(start(f"{build}/src/velmora"), port, sheet)
    except Failure as failure:
        sys.exit(f"check-atspi: {failure}")
    finally:
        for process in reversed(processes):
            if process.poll() is None:
                process.terminate()
            process.wait()
    print("Everything that AT-SPI finds has a name.")


main()
