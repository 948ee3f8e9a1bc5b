"""Using the card without a mouse: by keys, by the clipboard, and as a screen reader on a bus of its own."""

import os
import pathlib
import shutil
import subprocess
import time
import unittest

from harness import PNG, WindowTest


class Keys(WindowTest):
    """With screens that change at once, so that a key reaches the screen that the previous key opened."""

    def test_the_whole_flow_by_keys(self):
        self.environment["SELA_REDUCED_MOTION"] = "1"
        process = self.open_card(self.write("photo.jpg", b"content"))
        self.focus()
        # The album line; the passcode, some of it from the number pad; Escape leads back and not out.
        self.keys("Tab", "Return", "1", "2", "Escape", "Return")
        self.keys("1", "2", "3", "KP_4", "KP_5", "KP_6")
        # To the locked album, whose own password unfolds it; on to its child, and that one is picked.
        self.keys("Down", "Down", "Down", "Right", "2", "5", "8", "0", "Down", "Return")
        self.assertEqual(self.x("getwindowname", self.window), "Sela", "as before, for whoever looks on")
        self.keys("Return")
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(self.ledger_values("albumNames"), [["Private", "Letters"]])


@unittest.skipUnless(shutil.which("xclip"), "needs xclip")
class Clipboard(WindowTest):
    def setUp(self):
        super().setUp()
        self.files = [self.write(f"file {i}.jpg", b"content") for i in range(3)]

    def copy(self, kind, content):
        clip = self.start("xclip", "-selection", "clipboard", "-quiet", "-t", kind, stdin=subprocess.PIPE)
        clip.stdin.write(content)
        clip.stdin.close()
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline:
            offered = subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", "TARGETS"], env=self.environment,
                                     capture_output=True, text=True)
            if kind in offered.stdout.splitlines():
                return
            time.sleep(0.02)
        self.fail("the clipboard has no owner")

    def uris(self, *files):
        return "".join(pathlib.Path(file).as_uri() + "\r\n" for file in files).encode()

    def names(self):
        return sorted(name or "a picture" for name in self.ledger_values("preferredName"))

    def test_the_clipboard_from_the_command_line(self):
        add = ("--paste", "--tap", "addButton")
        self.copy("text/uri-list", self.uris(*self.files[:2]))
        self.run_program("sela-share", *add)
        self.assertEqual(self.names(), ["file 0.jpg", "file 1.jpg"])
        self.copy("image/png", PNG)
        self.run_program("sela-share", *add)
        self.assertEqual(self.names(), ["a picture", "file 0.jpg", "file 1.jpg"])
        self.copy("UTF8_STRING", b"only words")
        refused = self.run_program("sela-share", *add, expect=64)
        self.assertIn("the clipboard: it holds text; only files and pictures can be added", refused.stderr)

    def test_the_clipboard_in_the_window(self):
        process = self.open_card(self.files[0])
        self.focus()
        self.copy("x-special/gnome-copied-files", b"copy\n" + self.uris(self.files[1]).strip())
        self.keys("ctrl+v")
        self.copy("UTF8_STRING", b"only words")
        self.keys("ctrl+v")
        self.copy("text/uri-list", self.uris(self.home / "missing.jpg"))
        self.keys("ctrl+v")
        self.copy("image/png", PNG)
        self.keys("ctrl+v", "Return")
        self.assertEqual(process.wait(30), 1)
        self.assertEqual(self.names(), ["a picture", "file 0.jpg", "file 1.jpg"])


def role(element):
    """Newer versions of AT-SPI say "button" for "push button"."""
    return "push button" if element.get_role_name() == "button" else element.get_role_name()


class ScreenReader(WindowTest):
    """The elements and events that a screen reader gets, on a session bus of this test's own."""

    def setUp(self):
        super().setUp()
        try:
            import gi
            gi.require_version("Atspi", "2.0")
        except (ImportError, ValueError):
            self.skipTest("needs python3-gi and gir1.2-atspi-2.0")
        if not shutil.which("dbus-daemon"):
            self.skipTest("needs dbus-daemon")
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        os.environ.update({key: self.environment[key]
                           for key in ("DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "HOME", "XDG_RUNTIME_DIR")})
        from gi.repository import Atspi, GLib
        self.atspi, self.glib = Atspi, GLib
        self.events = []
        self.listener = Atspi.EventListener.new(self.hear)
        for kind in ("object:state-changed", "object:property-change", "object:property-change:accessible-value",
                     "object:children-changed"):
            self.listener.register(kind)

    def hear(self, event):
        try:
            source = event.source
            self.events.append((event.type, role(source), source.get_name(), event.detail1))
        except self.glib.Error:
            pass  # it has left the screen

    def until(self, condition, what):
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            while self.glib.MainContext.default().iteration(False):
                pass
            found = condition()
            if found:
                return found
            time.sleep(0.02)
        self.fail(f"{what}; the screen has {self.elements()}, and said {self.events[-30:]}")

    def walk(self, element):
        yield element
        for index in range(element.get_child_count()):
            child = element.get_child_at_index(index)
            if child:
                yield from self.walk(child)

    def elements(self):
        """Role, name and description of all elements on the screen, with their accessible objects."""
        desktop = self.atspi.get_desktop(0)
        found = {}
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application and application.get_name() == "sela-share":
                try:
                    for element in self.walk(application):
                        element.clear_cache()
                        found[role(element), element.get_name(), element.get_description()] = element
                except self.glib.Error:
                    return {}  # the screen changed meanwhile
        return found

    def appears(self, role, name, description=""):
        return self.until(lambda: self.elements().get((role, name, description)), f"there is no {role} {name}")

    def has_heard(self, kind, role, name, detail=None):
        heard = lambda: any(event[:3] == (kind, role, name) and detail in (None, event[3]) for event in self.events)
        self.until(heard, f"no {kind} of {role} {name}")

    def states(self, element):
        return {state.value_nick for state in element.get_state_set().get_states()}

    def press(self, element):
        """Activates an element as a tap would."""
        actions = [self.atspi.Action.get_action_name(element, i) for i in range(element.get_n_actions())]
        self.atspi.Action.do_action(element, actions.index("Press"))

    def test_reading_and_working_the_screens(self):
        process = self.open_card(self.write("photo.jpg", b"content"))
        self.focus()
        album = self.appears("push button", "Pick Album", "Add 1 file to Default Album")
        self.assertIn(("label", "Sela", ""), self.elements())
        self.assertIn(("push button", "Cancel", ""), self.elements())
        self.assertTrue({"focusable", "enabled"} <= self.states(album))
        self.keys("Tab")
        self.has_heard("object:state-changed:focused", "push button", "Pick Album", 1)
        self.assertIn("focused", self.states(album))
        self.press(album)

        # The entry shows the number of digits; the digits themselves appear nowhere.
        entry = self.appears("password text", "Digits entered")
        for digit in "0123456789":
            self.appears("push button", digit)
        self.has_heard("object:state-changed:focused", "password text", "Digits entered", 1)
        before = set(self.elements())
        self.events.clear()
        self.keys("1", "2", "3")
        self.until(lambda: self.atspi.Value.get_current_value(entry) == 3, "three digits")
        self.has_heard("object:property-change:accessible-value", "password text", "Digits entered")
        self.assertEqual(set(self.elements()), before)
        self.assertEqual({event[1:3] for event in self.events}, {("password text", "Digits entered")})
        self.keys("4", "5", "6")

        trips = self.appears("list item", "Trips", "Unlocked, Folded")
        self.assertIn(("list item", "Family", "Unlocked"), self.elements())
        self.assertIn(("list item", "Private", "Locked, Folded"), self.elements())
        self.assertIn("expandable", self.states(trips))
        self.assertNotIn("expanded", self.states(trips))
        self.press(next(e for e in self.walk(trips) if e.get_name() == "Child Albums"))
        self.assertIn("expanded", self.states(self.appears("list item", "Trips", "Unlocked, Unfolded")))
        rome = self.appears("list item", "Rome", "Unlocked")
        self.events.clear()
        self.press(rome)

        self.appears("push button", "Pick Album", "Add 1 file to Trips/Rome")
        # The card is back and can be used.
        self.has_heard("object:state-changed:focused", "push button", "Pick Album", 1)
        self.press(self.appears("push button", "Add"))
        self.has_heard("object:state-changed:showing", "notification", "Adding...", 1)
        self.has_heard("object:state-changed:showing", "notification", "Done", 1)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(self.ledger_values("albumNames"), [["Trips", "Rome"]])
