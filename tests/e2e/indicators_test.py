"""What a person at the screen sees of the recorder while it records, and that no picture of the recording shows it."""
import re
import shutil
import signal
import subprocess
import unittest
import zipfile

from stage import PATIENCE, Folder, Recording, Settings, info, run

SCREEN = (1920, 1080)
# The red light: in the plate of the running time, and alone (x, y, width, height; 10 pixels from the corner).
CLOCK_LIGHT = (1760, 1040, 30, 30)
LONE_LIGHT = (1880, 1040, 30, 30)
LIGHTS = (CLOCK_LIGHT, LONE_LIGHT)
STATUS = (860, 430, 200, 60)
LEFT_MASK = (20, 500, 40, 40)
PLATE = (0x24, 0x2B, 0x35)


def pixels(movie, area, *only):
    """The pixels of an area in each frame of a movie; `only` says which frames, as ffmpeg's options."""
    x, y, width, height = area
    raw = subprocess.run(["ffmpeg", "-v", "error", *only, "-i", str(movie), "-an", "-vsync", "passthrough", "-vf",
                          f"crop={width}:{height}:{x}:{y}:exact=1", "-pix_fmt", "rgb24", "-f", "rawvideo", "-"],
                         capture_output=True, timeout=PATIENCE, check=True).stdout
    size = width * height * 3
    return [raw[at:at + size] for at in range(0, len(raw), size)]


def is_red(frame):
    """A good part of the frame is the red of the light, see-through or not."""
    reds = sum(1 for at in range(0, len(frame), 3) if frame[at] > 130 and frame[at] > frame[at + 1] + 60
               and frame[at] > frame[at + 2] + 60)
    return reds > 60


def share_of(frame, colour, tolerance=12):
    hits = sum(1 for at in range(0, len(frame), 3)
               if all(abs(frame[at + i] - colour[i]) <= tolerance for i in range(3)))
    return hits * 3 / len(frame)


def with_slide_size(deck, width, height):
    """Gives a deck another slide size, in 1/914400 inch."""
    old = deck.with_suffix(".old")
    shutil.move(deck, old)
    with zipfile.ZipFile(old) as source, zipfile.ZipFile(deck, "w", zipfile.ZIP_DEFLATED) as target:
        for name in source.namelist():
            data = source.read(name)
            if name == "ppt/presentation.xml":
                data = re.sub(rb"<p:sldSz[^>]*/>", b'<p:sldSz cx="%d" cy="%d"/>' % (width, height), data)
            target.writestr(name, data)
    old.unlink()


class Watched:
    """A recording of the last two slides, and a movie of the screen meanwhile."""

    def __init__(self, desktop, narrow=False, **settings):
        self.folder = Folder()
        if narrow:
            with_slide_size(self.folder.deck, 9144000, 6858000)
        self.screen = self.folder.root / "screen.mkv"
        values = Settings(self.folder.root / "settings", **settings)
        recording = Recording(self.folder.deck, 4, "--from", "7", settings=values, desktop=desktop)
        camera = None
        try:
            recording.wait_until("the recorder's start", lambda: recording.children("kestrum"))
            camera = self._watch(recording.environment()["DISPLAY"])
            self.output = recording.wait()
        finally:
            if camera:
                camera.send_signal(signal.SIGINT)
                camera.wait(timeout=PATIENCE)
            recording.end()
        assert recording.process.returncode == 0, self.output

    def _watch(self, display):
        return subprocess.Popen(
            ["ffmpeg", "-v", "error", "-nostdin", "-f", "x11grab", "-draw_mouse", "0", "-framerate", "5", "-video_size",
             f"{SCREEN[0]}x{SCREEN[1]}", "-i", display, "-c:v", "libx264rgb", "-preset", "ultrafast", "-qp", "8",
             str(self.screen)], stderr=subprocess.DEVNULL)

    def seen(self, area):
        return pixels(self.screen, area)

    def recorded(self, area):
        return pixels(self.folder.package, area)


class IndicatorsTest(unittest.TestCase):
    def watch(self, desktop, **options):
        watched = Watched(desktop, **options)
        self.addCleanup(watched.folder.remove)
        return watched

    def expect_light(self, watched):
        """A light is on from its first frame to its last, and not in the recording. Where a window comes above it, as
        the document's does when the show ends, it is back before the next frame."""
        lit = [any(map(is_red, frames)) for frames in zip(*map(watched.seen, LIGHTS))]
        self.assertIn(True, lit, "nobody could see that it recorded\n" + watched.output)
        first, last = lit.index(True), len(lit) - lit[::-1].index(True)
        dark = [at for at in range(first, last) if not lit[at]]
        self.assertFalse([at for at in dark if not lit[at + 1]], f"dark in frames {dark} of {first} to {last}")
        self.assertLessEqual(len(dark), 2, f"dark in frames {dark} of {first} to {last}")
        self.assertGreater((last - first) / 5, info(watched.folder.package)["duration_ms"] / 2000)
        for light in LIGHTS:
            self.assertFalse(any(map(is_red, watched.recorded(light))))

    def test_the_running_time_is_seen_and_not_recorded(self):
        for desktop in ("openbox", "openbox picom"):
            with self.subTest(desktop=desktop):
                watched = self.watch(desktop, chkShowRecStatus=1)
                self.expect_light(watched)
                self.assertTrue(any(map(is_red, watched.seen(CLOCK_LIGHT))))
                solid = max(share_of(frame, PLATE) for frame in watched.seen(CLOCK_LIGHT))
                if "picom" in desktop:
                    self.assertLess(solid, 0.2, "see-through")
                else:
                    self.assertGreater(solid, 0.4)

    def test_a_light_is_seen_where_the_running_time_is_not_wanted(self):
        watched = self.watch("", chkShowRecStatus=0)
        self.expect_light(watched)
        self.assertFalse(any(map(is_red, watched.seen(CLOCK_LIGHT))))
        self.assertGreater(max(share_of(frame, PLATE) for frame in watched.seen(STATUS)), 0.15, "the status was seen")
        self.assertLess(max(share_of(frame, PLATE) for frame in watched.recorded(STATUS)), 0.05)

    def test_masks_stand_beside_a_narrow_slide_and_are_not_recorded(self):
        for desktop in ("openbox", "openbox picom"):
            with self.subTest(desktop=desktop):
                watched = self.watch(desktop, narrow=True, chkShowRecStatus=0)
                described = info(watched.folder.package)
                self.assertEqual((described["width"], described["height"]), (1440, 1080))
                behind = (0, 0, 0)
                mask = [(plate * 150 + below * 105) // 255 for plate, below in zip(PLATE, behind)]
                colour = mask if "picom" in desktop else PLATE
                self.assertGreater(max(share_of(frame, colour) for frame in watched.seen(LEFT_MASK)), 0.95)
                self.assertTrue(any(map(is_red, watched.seen(LONE_LIGHT))))
                self.expect_even_edge(watched)

    def expect_even_edge(self, watched):
        """At each slide change the recording has the slide's own colour up to its edge, where a mask begins."""
        edges = pixels(watched.folder.package, (0, 500, 4, 40), "-skip_frame", "nokey")
        insides = pixels(watched.folder.package, (40, 500, 4, 40), "-skip_frame", "nokey")
        self.assertGreaterEqual(len(edges), 2)
        for edge, inside in zip(edges, insides):
            self.assertLess(sum(abs(a - b) for a, b in zip(edge, inside)) / len(edge), 3)


if __name__ == "__main__":
    unittest.main()
