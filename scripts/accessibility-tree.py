#!/usr/bin/python3
"""Reads the running demo's accessibility tree over AT-SPI, as a screen reader
does, and prints each screen's controls with their names, roles and states.
Between screens it presses buttons by name through their accessible actions,
never through the mouse, and prints what a reader heard announced meanwhile
(a flipped state, a new value or name). Run it through scripts/accessibility-tree.sh, which
starts the display, the session bus, the registry and the demo."""
import sys
import time

import pyatspi
from gi.repository import GLib

APP_NAME = "BrightmereDemo"
# Roles a person acts on or reads a figure from; containers are skipped.
SHOWN_ROLES = {
    "push button", "toggle button", "check box", "radio button", "list item",
    "table cell", "column header", "slider", "text", "entry", "chart",
    "combo box", "menu item", "page tab", "spin button", "label", "unknown",
}
STATES = [
    (pyatspi.STATE_CHECKED, "checked"), (pyatspi.STATE_SELECTED, "selected"),
    (pyatspi.STATE_FOCUSED, "focused"), (pyatspi.STATE_FOCUSABLE, "focusable"),
]
# (what to press, by accessible name; the screen reached). None: the first screen.
STEPS = [
    (None, "test screen with its tutorial"),
    ("Start test", "a run"),
    ("Sound, off", "the sound on"),
    ("Options", "the options popup"),
    ("Cancel", "back on the run"),
    ("Stop test", "the run stopped"),
    ("Results", "the saved sets list"),
    ("Back to Fairzone Test", "back on the test screen"),
    ("Menu", "the side menu"),
]


ANNOUNCEMENTS = ("object:state-changed:checked", "object:state-changed:selected",
                 "object:property-change:accessible-value", "object:property-change:accessible-name")
heard = []


def listen(event):
    try:
        what = event.type.split(":")[-1]
        heard.append(f'{what} of "{event.source.name}"')
    except Exception:  # the source went away before we asked for its name
        pass


def wait(seconds):
    """Lets the registry deliver events while the demo moves on."""
    end = time.time() + seconds
    context = GLib.MainContext.default()
    while time.time() < end:
        while context.iteration(False):
            pass
        time.sleep(0.02)


def find_app():
    desktop = pyatspi.Registry.getDesktop(0)
    for _ in range(40):
        for app in desktop:
            if app is not None and app.name == APP_NAME:
                return app
        time.sleep(0.25)
    sys.exit(f"no application named {APP_NAME} on the accessibility bus")


def describe(node):
    states = node.getState()
    words = [label for state, label in STATES if states.contains(state)]
    try:
        value = node.queryValue().currentValue
        words.append(f"value {value:g}")
    except NotImplementedError:
        pass
    text = ""
    if node.getRoleName() in ("text", "entry"):
        try:
            t = node.queryText()
            text = f' text "{t.getText(0, t.characterCount)}"'
        except NotImplementedError:
            pass
    return f'{node.getRoleName()}: "{node.name}"{text}' + (f" [{', '.join(words)}]" if words else "")


def shown(node, found):
    try:
        states = node.getState()
        if not states.contains(pyatspi.STATE_SHOWING) and node.getRoleName() != "application":
            return
        if node.getRoleName() in SHOWN_ROLES and (node.name or node.getRoleName() not in ("label", "unknown")):
            found.append(node)
        for i in range(node.childCount):
            shown(node.getChildAtIndex(i), found)
    except Exception:  # a widget gone while walking: the next screen has it no more
        return


def controls(app):
    found = []
    shown(app, found)
    return found


def press(app, name):
    for node in controls(app):
        if node.name != name:
            continue
        try:
            action = node.queryAction()
        except NotImplementedError:
            continue
        for i in range(action.nActions):
            if action.getName(i) in ("Press", "press", "Toggle", "toggle", "click"):
                action.doAction(i)
                return True
    return False


def main():
    app = find_app()
    pyatspi.Registry.registerEventListener(listen, *ANNOUNCEMENTS)
    for name, screen in STEPS:
        heard.clear()
        if name is not None and not press(app, name):
            print(f"\n== {screen}: no control named \"{name}\" to press; stopping")
            break
        wait(1.5)
        nodes = controls(app)
        print(f"\n== {screen}" + (f' (after pressing "{name}")' if name else "") + f": {len(nodes)} controls")
        for node in nodes:
            print("  " + describe(node))
        if heard:
            # The speed is announced about once a second; the rest once each.
            counts = {line: heard.count(line) for line in heard}
            print("  heard: " + "; ".join(f"{line} (x{n})" if n > 1 else line for line, n in counts.items()))


if __name__ == "__main__":
    main()
