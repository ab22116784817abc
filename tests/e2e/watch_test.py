"""Shows that a person starts in Impress, recorded by themselves, with the settings that change how."""
import json
import signal
import time
import unittest

import stage
from lecture_test import TITLES
from stage import KESTRUM, Folder, Recording, Settings, info, run, verify


class WatchTest(unittest.TestCase):
    """Keys go to whatever has the keyboard, as a person's do."""

    def watch(self, **settings):
        self.folder = Folder("watched", "lecture.pptx")
        self.addCleanup(self.folder.remove)
        settings = Settings(self.folder.root / "settings", chkLowVolDetect="0", **settings)
        self.recording = Recording(self.folder.deck, settings=settings, command="watch", size="1280x720")
        self.addCleanup(self.recording.end)
        self.recording.wait_until("the watch", lambda: "Each slide show is recorded" in self.recording.output())
        self.environment = self.recording.environment()
        self.recording.wait_until("the document", lambda: self.windows("Impress"))

    def act(self, *command, check=True):
        return run(*command, check=check, env=self.environment)

    def windows(self, name):
        return self.act("xdotool", "search", "--onlyvisible", "--name", name, check=False).stdout.split()

    def entries(self):
        if not self.folder.package.exists():
            return []
        answer = run(KESTRUM, "info", "--json", self.folder.package, check=False)
        return [entry["title"] for entry in json.loads(answer.stdout)["index"]] if answer.returncode == 0 else []

    def recordings_ended(self):
        return self.recording.output().count("package: ")

    def start_show(self, questions=False):
        """F5, as often as it takes: the document's window may not have the keyboard yet. Messages are read first."""
        entries, last = len(self.entries()), [0.0]

        def begun():
            if questions and self.read_message():
                return False
            if time.monotonic() - last[0] > 15:
                self.act("xdotool", "key", "F5")
                last[0] = time.monotonic()
            return len(self.entries()) > entries
        self.recording.wait_until("the recording of the show", begun)

    def read_message(self):
        """Presses OK on a message of the recorder; False if there is none."""
        boxes = self.windows("^Kestrum")
        if boxes:
            self.act("xdotool", "windowactivate", "--sync", boxes[0], "key", "Return", check=False)
        return bool(boxes)

    def next_slide(self):
        entries = len(self.entries())
        self.act("xdotool", "key", "Next")
        self.recording.wait_until("the next slide", lambda: len(self.entries()) > entries)

    def end_show(self):
        ended = self.recordings_ended()
        self.act("xdotool", "key", "Escape")
        self.recording.wait_until("the end of the recording", lambda: self.recordings_ended() > ended)

    def test_two_shows_straight_after_each_other_are_one_lecture(self):
        self.watch(chkAutoRecord="1")
        self.start_show()
        self.next_slide()
        self.end_show()
        first = info(self.folder.package)
        self.assertEqual([entry["title"] for entry in first["index"]], TITLES[:2])
        self.start_show()
        self.end_show()
        both = info(self.folder.package)
        self.assertEqual(both["index"][:2], first["index"])
        self.assertEqual(both["index"][2]["pos_ms"], first["duration_ms"])
        self.start_show()
        self.recording.signal(signal.SIGTERM, "kestrum")  # a recording under way is finished first
        self.recording.wait()
        self.assertEqual(self.recording.process.returncode, 143)
        self.assertEqual(len(info(self.folder.package)["index"]), 4)
        self.assertEqual(verify(self.folder.package)["state"], "whole")

    def test_slides_passed_through_leave_one_entry(self):
        self.watch(chkAutoRecord="1", chkSkipPres="1")
        self.start_show()
        time.sleep(2)
        self.act("xdotool", "key", "--delay", "250", "Next", "Next", "Next")
        self.recording.wait_until("the fourth slide", lambda: TITLES[3] in self.entries())
        self.end_show()
        found = [entry["title"] for entry in info(self.folder.package)["index"]]
        self.assertEqual((found[0], found[-1]), (TITLES[0], TITLES[3]))
        self.assertLess(len(found), 4, "no slide was passed through")

    def test_the_pen_is_red_from_the_start(self):
        self.watch(chkAutoRecord="1", chkStartPen="1")
        self.start_show()
        time.sleep(1)
        # At a hand's speed: the office joins motions that come all at once.
        self.act("xdotool", "mousemove", "200", "600", "sleep", "0.3", "mousedown", "1", "sleep", "0.3", "mousemove", "500",
                 "600", "sleep", "0.3", "mousemove", "800", "620", "sleep", "0.3", "mouseup", "1")
        time.sleep(1)
        picture = self.folder.root / "pen.png"
        self.act("import", "-window", "root", picture)
        self.end_show()
        colour = run("convert", picture, "-crop", "600x40+200+590", "-fill", "black", "+opaque", "#ff0000", "-format",
                     "%[fx:mean.r*w*h]", "info:").stdout
        self.assertGreater(float(colour), 200, "no red stroke on the slide")

    def test_a_worker_that_dies_does_not_keep_the_next_show_from_being_recorded(self):
        self.watch(chkAutoRecord="1")
        self.start_show()
        self.recording.kill("ksmedia")
        self.recording.wait_until("the end of the recording",
                                  lambda: not self.read_message() and self.recordings_ended() == 1)
        self.start_show(questions=True)
        self.assertGreaterEqual(len(self.entries()), 2)

    def test_the_watch_ends_when_the_document_is_closed(self):
        self.watch(chkAutoRecord="1")
        self.start_show()
        self.end_show()
        deadline = time.monotonic() + 60
        while self.recording.process.poll() is None and time.monotonic() < deadline:
            self.act("xdotool", "key", "ctrl+q", check=False)
            time.sleep(2)
        self.recording.wait()
        self.assertEqual(self.recording.process.returncode, 0)
        self.assertEqual(verify(self.folder.package)["state"], "whole")

    def test_without_automatic_recording_it_says_so(self):
        folder = Folder("watched", "lecture.pptx")
        self.addCleanup(folder.remove)
        result = stage.on_stage(KESTRUM, "watch", folder.deck, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("Automatic recording is switched off", result.stderr)


if __name__ == "__main__":
    unittest.main()
