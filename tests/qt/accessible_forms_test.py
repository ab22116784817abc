"""Every form of the product through the eyes of an assistive program: roles, names, states, labels, order of focus.

    accessible_forms_test.py FORM_SHELF

Each form is shown by FORM_SHELF on a private display with a message bus of its own, and its tree is read over AT-SPI.
"""
import contextlib
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PATIENCE = 120  # seconds; a bound for a hang, not a measure of speed


def start_desktop():
    """A display, and this program once more below a message bus of its own."""
    read, write = os.pipe()
    display = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
                               pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as number, tempfile.TemporaryDirectory(prefix="kestrum-a11y.") as room:
        environment = {**os.environ, "DISPLAY": ":" + number.readline().strip(), "XDG_RUNTIME_DIR": room,
                       "XDG_CONFIG_HOME": room, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_ACCESSIBILITY": "1",
                       "KESTRUM_FORM_DESKTOP": "1", "NO_AT_BRIDGE": "0"}
        environment.pop("WAYLAND_DISPLAY", None)
        environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        try:
            return subprocess.run(["dbus-run-session", "--", sys.executable, *sys.argv], env=environment).returncode
        finally:
            display.terminate()
            display.wait(timeout=60)


if os.environ.get("KESTRUM_FORM_DESKTOP") != "1":
    sys.exit(start_desktop())

import gi  # noqa: E402

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

SHELF = sys.argv.pop(1)
FORMS = subprocess.run([SHELF], capture_output=True, text=True, check=True).stdout.split()

Role, State = Atspi.Role, Atspi.StateType
# What a person works with.
INTERACTIVE = {Role.PUSH_BUTTON, Role.CHECK_BOX, Role.RADIO_BUTTON, Role.COMBO_BOX, Role.TEXT, Role.SLIDER, Role.LINK,
               Role.SPIN_BUTTON, Role.TOGGLE_BUTTON}
# What only tells something by a value.
TELLING = {Role.PROGRESS_BAR, Role.LEVEL_BAR}
# Windows that accompany a recording: they tell, and never take the keyboard.
NOTICES = {"frmStatus", "frmAdvice", "frmLecturer", "frmNotice", "frmRecDot", "frmRecStatus", "frmTopmost"}


class Shown:
    """A form on the screen, and its window in the tree."""

    def __init__(self, name):
        self.process = subprocess.Popen([SHELF, name])
        deadline = time.monotonic() + PATIENCE
        self.window = None
        while not self.window:
            assert self.process.poll() is None, f"{name} could not be shown"
            assert time.monotonic() < deadline, f"{name} never came into the tree"
            time.sleep(0.1)
            self.window = self._find()
        time.sleep(0.5)  # its devices have been looked at

    def _find(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            program = desktop.get_child_at_index(index)
            if program and program.get_process_id() == self.process.pid and program.get_child_count() > 0:
                return program.get_child_at_index(0)
        return None

    def all(self, node=None):
        node = node or self.window
        yield node
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child and node.get_role() != Role.COMBO_BOX:
                yield from self.all(child)

    def seen(self):
        """What is on the screen now."""
        return [node for node in self.all() if node.get_state_set().contains(State.SHOWING)]

    def end(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()


def told(node):
    return f"{node.get_role_name()} {node.get_name()!r}"


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE).stdout


class Stop:
    """A place where the keyboard stops."""

    def __init__(self, node):
        extents = node.get_extents(Atspi.CoordType.SCREEN)
        self.name = told(node)
        self.left, self.top = extents.x, extents.y
        self.right, self.bottom = extents.x + extents.width, extents.y + extents.height
        parent = node.get_parent()
        self.frame = parent.get_name() if parent else ""

    def __eq__(self, other):
        return (self.name, self.left, self.top) == (other.name, other.left, other.top)


def labels_of(node):
    """The names of the labels that are tied to the node; a frame around it is none."""
    targets = [relation.get_target(index) for relation in node.get_relation_set()
               if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY
               for index in range(relation.get_n_targets())]
    return [target.get_name() for target in targets if target.get_role() == Role.LABEL]


class AccessibleFormsTest(unittest.TestCase):
    @contextlib.contextmanager
    def shown(self, name):
        with self.subTest(form=name):
            form = Shown(name)
            try:
                yield form
            finally:
                form.end()

    def test_every_form_has_a_role_a_name_and_what_is_in_it_is_told(self):
        count = 0
        for name in FORMS:
            with self.shown(name) as form:
                seen = form.seen()
                if name in NOTICES:
                    told_by = [node for node in seen if node.get_role() == Role.LABEL and node.get_name()]
                    self.assertTrue(told_by, "nothing is told")
                    self.assertFalse([told(node) for node in seen if node.get_role() in INTERACTIVE])
                else:
                    self.assertTrue(form.window.get_name(), "the window has no title")
                    self.assertIn(form.window.get_role(), (Role.DIALOG, Role.FRAME, Role.WINDOW, Role.ALERT))
                for node in seen:
                    if node.get_role() in INTERACTIVE | TELLING:
                        count += 1
                        self.check(node)
        self.assertGreater(count, 50, "the forms have many controls")

    def check(self, node):
        states = node.get_state_set()
        self.assertTrue(node.get_name().strip(), f"{told(node)} has no name")
        if node.get_role() in INTERACTIVE and states.contains(State.ENABLED):
            self.assertTrue(states.contains(State.FOCUSABLE), f"{told(node)} is not reached by the keyboard")
        if node.get_role() in {Role.SLIDER, Role.PROGRESS_BAR, Role.LEVEL_BAR}:
            value = node.get_value_iface()
            self.assertIsNotNone(value, f"{told(node)} tells no value")
            self.assertLess(value.get_minimum_value(), value.get_maximum_value())

    def test_a_box_tells_whether_it_is_set(self):
        for name in ("frmConfig", "frmVolSetting", "frmRecorded"):
            with self.shown(name) as form:
                box = next(node for node in form.seen() if node.get_role() == Role.CHECK_BOX
                           and node.get_state_set().contains(State.ENABLED))
                before = box.get_state_set().contains(State.CHECKED)
                box.get_action_iface().do_action(0)
                deadline = time.monotonic() + PATIENCE
                while box.get_state_set().contains(State.CHECKED) == before:
                    self.assertLess(time.monotonic(), deadline, f"{told(box)} never changed")
                    time.sleep(0.1)

    def test_labels_are_tied_to_their_fields(self):
        tied = {"frmConfig": 3, "frmDevice": 5, "frmFirstRun": 2, "frmVolSetting": 2, "frmVolMsg": 2, "frmExportMp4": 1,
                "frmConfigSound": 2, "frmRecorded": 3}
        for name, least in tied.items():
            with self.shown(name) as form:
                fields = [node for node in form.seen() if labels_of(node)]
                self.assertGreaterEqual(len(fields), least, [told(node) for node in form.seen()])
                for node in fields:
                    self.assertTrue(all(labels_of(node)), told(node))

    def test_the_keyboard_goes_the_way_the_form_is_read(self):
        for name in FORMS:
            if name in NOTICES | {"frmExecCmd"}:  # its one button works while a tool runs; ExecCmd_test presses it
                continue
            with self.shown(name) as form:
                stops = self.stops(form)
                self.assertTrue(stops, "nothing can be pressed: " + str([told(node) for node in form.seen()]))
                first = min(range(len(stops)), key=lambda number: (stops[number].top, stops[number].left))
                stops = stops[first:] + stops[:first]  # a dialog may begin at its main button
                # One stop is left of or above the next; a frame is read to its end before the one beside it.
                for one, other in zip(stops, stops[1:]):
                    follows = other.top >= one.bottom or other.left >= one.right or other.frame != one.frame
                    self.assertTrue(follows, f"{one.name} before {other.name}")

    def stops(self, form):
        """What Tab comes to, once round, as the tree tells it."""
        stops = []
        run("xdotool", "windowfocus", "--sync", run("xdotool", "search", "--pid", str(form.process.pid), "--name",
                                                     ".").split()[-1])
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            focused = [node for node in form.seen() if node.get_state_set().contains(State.FOCUSED)
                       and node.get_role() in INTERACTIVE]
            if focused:
                stop = Stop(focused[-1])
                if stops and stop == stops[0] and len(stops) > 1:
                    return stops
                if not stops or stop != stops[-1]:
                    stops.append(stop)
                elif len(stops) == 1 and self.is_alone(form):
                    return stops
                run("xdotool", "key", "Tab")
            time.sleep(0.15)
        raise AssertionError("the keyboard never came round: " + str([stop.name for stop in stops]))

    def is_alone(self, form):
        return len([node for node in form.seen() if node.get_role() in INTERACTIVE
                    and node.get_state_set().contains(State.FOCUSABLE)
                    and node.get_state_set().contains(State.ENABLED)]) == 1

    def test_the_level_is_told_by_a_number(self):
        for name in ("frmVolSetting", "frmFirstRun", "frmLecturer"):
            with self.shown(name) as form:
                deadline = time.monotonic() + PATIENCE
                while True:
                    meters = [node for node in form.seen() if node.get_role() in TELLING]
                    self.assertEqual(len(meters), 1, [told(node) for node in form.seen()])
                    if meters[0].get_value_iface().get_current_value() == 12:  # 60 of 100 in 20 bars
                        break
                    self.assertLess(time.monotonic(), deadline, "the level never came")
                    time.sleep(0.2)

    def test_the_red_light_has_a_name(self):
        for name in ("frmRecDot", "frmRecStatus", "frmLecturer"):
            with self.shown(name) as form:
                self.assertIn("Recording", [node.get_name() for node in form.seen()])


if __name__ == "__main__":
    unittest.main(verbosity=2)
