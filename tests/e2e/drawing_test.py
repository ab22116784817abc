"""A lecture at which one draws: with the office's own pen, on the canvas, on the whiteboard. What was drawn is looked at
in the recording, at the moments at which it was on the screen."""
import os
import pathlib
import subprocess
import time
import unittest

import stage
from lecture_test import TITLES
from stage import Folder, Recording, Settings, info, nearest, run, slide_thumbs, thumb, verify

RED, GREEN, BLUE, YELLOW = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0)

# Where the strokes lie: rows of the screen, from one column to the other; no slide shows these colours there.
LEFT, RIGHT = 1500, 1700
ROWS = {"canvas": 560, "canvas again": 600, "whiteboard": 640, RED: 680, GREEN: 720, BLUE: 760, YELLOW: 800}


def pixels(package, milliseconds, row):
    """The pixels of the recorded picture around a stroke, as (red, green, blue), at this time."""
    width, height = RIGHT - LEFT - 20, 16
    result = subprocess.run(["ffmpeg", "-v", "error", "-i", str(package), "-to", f"{milliseconds / 1000:.3f}", "-an",
                             "-fps_mode", "passthrough", "-vf",
                             f"crop={width}:{height}:{LEFT + 10}:{row - height // 2},format=rgb24", "-f", "rawvideo", "-"],
                            capture_output=True, timeout=stage.PATIENCE, check=True).stdout
    size = width * height * 3
    assert result and len(result) % size == 0, f"no picture at {milliseconds}"
    last = result[-size:]
    return [tuple(last[i:i + 3]) for i in range(0, size, 3)]


def like(pixel, colour):
    """Lossy coding makes thin lines pale, but leaves them what they are."""
    strong = [value for value, wanted in zip(pixel, colour) if wanted]
    weak = [value for value, wanted in zip(pixel, colour) if not wanted]
    return min(strong) - max(weak) > 60


class DrawingTest(unittest.TestCase):
    """Drawn once; each test looks at another moment."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Folder()
        cls.addClassCleanup(cls.folder.remove)
        cls.package = cls.folder.package
        settings = Settings(cls.folder.root / "settings", chkSetVolBefRec="0", chkLowVolDetect="0", chkStartPen="1")
        cls.recording = Recording(cls.folder.deck, settings=settings)
        cls.addClassCleanup(cls.recording.end)
        cls.moments = {}
        cls.lecture()
        cls.output = cls.recording.wait()
        cls.slides = slide_thumbs(cls.folder.deck, cls.folder.root)

    @classmethod
    def lecture(cls):
        cls.recording.wait_until("the recorder", lambda: cls.recording.children("kestrum"))
        cls.environment = cls.recording.environment()
        cls.answer_the_question_for_the_resolution()
        cls.recording.wait_for_entries(cls.package, 1)
        cls.key("F10").draw("canvas").remember("canvas")
        cls.key("Right").remember("next slide").draw("canvas again").remember("canvas again")
        cls.key("F10").remember("canvas closed")
        cls.key("F11").draw("whiteboard").remember("whiteboard")
        cls.key("F10").remember("canvas instead")
        cls.key("Escape").key("F9").draw(RED).remember(RED)
        for colour in (GREEN, BLUE, YELLOW):
            cls.key("F8").draw(colour).remember(colour)
        cls.key("F12")

    @classmethod
    def act(cls, *command, check=True):
        return run(*command, check=check, env=cls.environment)

    @classmethod
    def answer_the_question_for_the_resolution(cls):
        cls.recording.wait_until("the question", lambda: cls.act(
            "xdotool", "search", "--onlyvisible", "--name", "^Screen Resolution$", check=False).returncode == 0)
        time.sleep(1)  # it has the keyboard by now
        cls.act("xdotool", "key", "Return")

    @classmethod
    def key(cls, name):
        cls.act("xdotool", "key", name)
        time.sleep(1)
        return cls

    @classmethod
    def draw(cls, name):
        row = ROWS[name]
        steps = [word for x in range(LEFT, RIGHT + 1, 20) for word in ("mousemove", str(x), str(row), "sleep", "0.02")]
        cls.act("xdotool", "mousemove", str(LEFT), str(row), "sleep", "0.2", "mousedown", "1", *steps, "mouseup", "1",
                "mousemove", str(LEFT), "1000")
        return cls

    @classmethod
    def remember(cls, name):
        """What is on the screen now is in the recording before its present end, once that has moved on."""
        time.sleep(1)
        before = info(cls.package)["duration_ms"]
        cls.recording.wait_until("the recording grow", lambda: info(cls.package)["duration_ms"] > before + 500)
        cls.moments[name] = before + 400
        if "KESTRUM_PICTURES" in os.environ:
            folder = pathlib.Path(os.environ["KESTRUM_PICTURES"])
            cls.act("import", "-window", "root", folder / f"{len(cls.moments)}.png")
        return cls

    def strokes(self, moment, row):
        return pixels(self.package, self.moments[moment], ROWS[row])

    def assert_drawn(self, moment, row, colour):
        found = self.strokes(moment, row)
        self.assertGreater(sum(like(pixel, colour) for pixel in found), 150, f"{row} is not to be seen at: {moment}")

    def assert_not_drawn(self, moment, row, colour):
        found = self.strokes(moment, row)
        self.assertEqual(sum(like(pixel, colour) for pixel in found), 0, f"{row} is to be seen at: {moment}")

    def assert_slide(self, moment, number):
        frame = thumb(self.package, self.moments[moment] / 1000)
        self.assertEqual(nearest(frame, self.slides) + 1, number, moment)

    def test_the_stop_key_ends_the_recording_normally(self):
        self.assertEqual(self.recording.process.returncode, 0, self.output)
        self.assertEqual([entry["title"] for entry in info(self.package)["index"]], TITLES[:2])
        self.assertEqual(verify(self.package)["state"], "whole")

    def test_what_is_drawn_on_the_canvas_lies_above_the_slide(self):
        self.assert_slide("canvas", 1)
        self.assert_drawn("canvas", "canvas", RED)

    def test_the_next_slide_comes_with_a_clean_canvas(self):
        self.assert_slide("next slide", 2)
        self.assert_not_drawn("next slide", "canvas", RED)
        self.assert_drawn("canvas again", "canvas again", RED)
        self.assert_not_drawn("canvas again", "canvas", RED)

    def test_the_canvas_key_closes_the_canvas(self):
        self.assert_slide("canvas closed", 2)
        self.assert_not_drawn("canvas closed", "canvas again", RED)

    def test_the_whiteboard_is_white_under_what_is_drawn(self):
        self.assert_drawn("whiteboard", "whiteboard", RED)
        grey = thumb(self.package, self.moments["whiteboard"] / 1000)
        self.assertGreater(sum(value > 240 for value in grey) / len(grey), 0.98)

    def test_the_canvas_key_closes_the_whiteboard(self):
        self.assert_slide("canvas instead", 2)
        self.assert_not_drawn("canvas instead", "whiteboard", RED)

    def test_the_offices_pen_is_recorded_and_f8_changes_its_colour(self):
        for colour in (RED, GREEN, BLUE, YELLOW):
            self.assert_slide(colour, 2)
            self.assert_drawn(colour, colour, colour)
        self.assert_drawn(YELLOW, RED, RED)  # ink of the office stays


if __name__ == "__main__":
    unittest.main()
