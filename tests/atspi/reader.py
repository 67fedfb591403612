# What a screen reader sees of the program, and the keys of its user: looks, waits, presses.
# SPDX-License-Identifier: MIT
import re
import subprocess
import time

import gi
import pyatspi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

LIMIT = 600  # seconds for any state to come up; only a broken program reaches it
Atspi.set_timeout(LIMIT * 1000, LIMIT * 1000)  # a program on a busy machine answers late

# What is there to be used or read; panels, fillers and scroll bars are not.
CONTROLS = {
    pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_RADIO_BUTTON, pyatspi.ROLE_COMBO_BOX,
    pyatspi.ROLE_TEXT, pyatspi.ROLE_ENTRY, pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_TREE, pyatspi.ROLE_TREE_TABLE,
    pyatspi.ROLE_LIST, pyatspi.ROLE_LIST_ITEM, pyatspi.ROLE_TABLE_CELL, pyatspi.ROLE_MENU, pyatspi.ROLE_MENU_ITEM,
    pyatspi.ROLE_MENU_BAR, pyatspi.ROLE_SPLIT_PANE, pyatspi.ROLE_PAGE_TAB, pyatspi.ROLE_DIALOG, pyatspi.ROLE_FRAME,
    pyatspi.ROLE_TOOL_BAR, pyatspi.ROLE_ALERT,
}


class Failure(Exception):
    """What is wrong, as a sentence."""


needed = []  # programs without which nothing comes up any more


def wait_for(what, look):
    """Returns what look() finds as soon as it finds something."""
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        for process in needed:
            if process.poll() is not None:
                raise Failure(f"{what} did not come up: {process.args[0]} ended with {process.returncode}")
        try:
            found = look()
        except (GLib.Error, LookupError):  # the tree changes while it is read
            found = None
        if found:
            return found
        time.sleep(0.05)
    raise Failure(f"{what} did not come up")


def output(*command):
    return subprocess.run(command, capture_output=True, text=True).stdout.strip()


# Looks

def below(item):
    """The item and everything below it, with the names on the way."""
    todo = [(item, item.name)]
    while todo:
        node, path = todo.pop()
        yield node, path
        todo += [(child, f"{path} / {child.name}") for child in reversed(list(node)) if child is not None]


def program():
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == "velmora":
            return app
    raise LookupError("not there yet")


def has(node, *states):
    set_ones = node.getState()
    return all(set_ones.contains(state) for state in states)


def shown(role, name, window=None):
    """The one of this role and name that is on the screen; None when there is none."""
    return next((node for node, _ in below(window or program()) if node.getRole() == role and node.name == name and
                 has(node, pyatspi.STATE_SHOWING)), None)


def wait_for_node(role, name, window=None, states=()):
    def look():
        node = shown(role, name, window)
        return node if node and has(node, *states) else None
    return wait_for(f'"{name}"', look)


# Windows and keys

def has_keys(title):
    """True when keys go to the window of this title: the X server's focus, which the window manager sets after the
    program has shown a window, or has ended one."""
    return output("xdotool", "getwindowfocus", "getwindowname") == title


def top_window(role, title):
    windows = [node for node in program() if node is not None]
    return next((node for node in windows if node.getRole() == role and node.name == title and
                 has(node, pyatspi.STATE_SHOWING)), None)


def wait_for_end(role, title):
    wait_for(f'the end of the window "{title}"', lambda: not top_window(role, title))


def window(role, title):
    """The window of this title, once it is the one that keys go to, for the X server and for the program."""
    def look():
        # A window manager that has just started may handle a new window only at its next event: this is one.
        output("xprop", "-root", "-f", "VELMORA_LOOK", "8c", "-set", "VELMORA_LOOK", "1")
        node = top_window(role, title)
        return node if node and has(node, pyatspi.STATE_ACTIVE) and has_keys(title) else None
    return wait_for(f'the window "{title}"', look)


def press(*keys):
    subprocess.run(["xdotool", "key", "--clearmodifiers", "--delay", "20", *keys], check=True)


def popups():
    """The windows on the screen of which the window manager knows nothing, with their widths and heights: menus and
    help. Sorted."""
    tree = output("xwininfo", "-root", "-children")
    sizes = []
    for number in re.findall(r"^ +(0x[0-9a-f]+) ", tree, re.MULTILINE):
        facts = output("xwininfo", "-id", number)
        if "Override Redirect State: yes" in facts and "Map State: IsViewable" in facts:
            size = [int(re.search(side + r": (\d+)", facts)[1]) for side in ("Width", "Height")]
            if min(size) > 1:
                sizes.append(tuple(size))
    return sorted(sizes)


# Checks

def core(text):
    """What counts of a text when it is compared with another."""
    return re.sub("[^a-z0-9]", "", text.lower())


def controls(top):
    return [(node, path) for node, path in below(top)
            if node.getRole() in CONTROLS and has(node, pyatspi.STATE_SHOWING)]


def check(what, top, least, described):
    """Every control on the screen has a name, and every description says more than the name. There are at least so many
    controls, and so many with a description."""
    found = []

    def enough():
        found[:] = [(node.name.strip(), node.description.strip(), f"{path} ({node.getRoleName()})")
                    for node, path in controls(top)]
        return len(found) >= least and sum(bool(text) for _, text, _ in found) >= described

    try:
        wait_for("enough controls", enough)
    except Failure as failure:
        counts = f"{len(found)} controls, {sum(bool(text) for _, text, _ in found)} with a description"
        raise Failure(f"{what}: {counts}, expected {least} and {described}: {failure}") from None
    wrong = [path for name, _, path in found if not name]
    if wrong:
        raise Failure(f"{what}: controls without a name:\n  " + "\n  ".join(wrong))
    wrong = [f"{path}: {text}" for name, text, path in found if text and core(text) in core(name)]
    if wrong:
        raise Failure(f"{what}: descriptions that add nothing to the name:\n  " + "\n  ".join(wrong))
    texts = sum(bool(text) for _, text, _ in found)
    print(f"{what}: {len(found)} controls, all with names, {texts} with a description", flush=True)
