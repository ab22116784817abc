"""player.mjs, the browser test for any published page, on pages made here: what it saves and what it notices. The player
itself is tested in player/."""
import atexit
import functools
import json
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import stage
from stage import ROOT, difference, run, thumb

COLOURS = ["0x203864", "0x8a1c1c", "0x1c6b3a"]
SECONDS = 2  # of each slide


@functools.lru_cache(maxsize=None)
def movie(sound):
    """Three slides of one colour each, a key frame at the begin of each; made once for each sound."""
    path = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-movie.")) / "media.mp4"
    atexit.register(shutil.rmtree, path.parent, ignore_errors=True)
    sources = []
    for colour in COLOURS:
        sources += ["-f", "lavfi", "-i", f"color={colour}:size=640x360:rate=10:duration={SECONDS}"]
    run("ffmpeg", "-v", "error", "-y", *sources, "-f", "lavfi", "-i", sound, "-filter_complex", "[0][1][2]concat=n=3[v]",
        "-map", "[v]", "-map", "3:a", "-t", 3 * SECONDS, "-c:v", "libx264", "-bf", "0", "-pix_fmt", "yuv420p",
        "-force_key_frames", f"{SECONDS},{2 * SECONDS}", "-c:a", "aac", path)
    return path


class Page:
    """A published folder under a name with blanks and Chinese."""

    def __init__(self, titles=("First", "Second", "Third"), **config):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-player."))
        self.folder = self.root / "课件 week 1.ktr.mp4(1)"
        shutil.copytree(ROOT / "install" / "mp4", self.folder)
        (self.folder / "author_120.png").rename(self.folder / "author.png")
        shutil.copy(movie(config.pop("sound", "sine=frequency=300")), self.folder)
        run("ffmpeg", "-v", "error", "-i", self.folder / "media.mp4", "-frames:v", "1", self.folder / "cover.jpg")
        entries = [{"id": str(n), "time": str((n - 1) * 1000 * SECONDS), "title": title, "indent": "0", "sn": str(n)}
                   for n, title in enumerate(titles, 1)]
        self.config = {"title": "A Lecture", "poster": "cover.jpg",
                       "author": {"name": "Anna Keller", "photo": "author.png"}, "width": 640, "height": 360,
                       "hideSN": 0, "duration": "00:06",
                       "src": [{"src": "media.mp4", "size": {"width": 640, "height": 360}}], "index": entries, **config}
        self.write_config()
        (self.folder / "ques_config.js").write_text("var quiz = [];var quizLang = {};")
        self.out = self.root / "out"

    def write_config(self):
        (self.folder / "config.js").write_text("var config = " + json.dumps(self.config).replace("/", "\\/"))

    def play(self, **expected):
        """The browser test's result: exit code, summary, sentences."""
        wanted = self.root / "expected.json"
        wanted.write_text(json.dumps(expected))
        return subprocess.run(["node", str(ROOT / "tests/e2e/player.mjs"), str(self.folder / "index.html"), str(wanted),
                               str(self.out)], capture_output=True, text=True, timeout=stage.PATIENCE)

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)


class PlayerTest(unittest.TestCase):
    def page(self, *arguments, **config):
        page = Page(*arguments, **config)
        self.addCleanup(page.remove)
        return page

    def assert_plays(self, page, **expected):
        result = page.play(**expected)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return json.loads(result.stdout)

    def assert_fails(self, page, sentence, **expected):
        result = page.play(patience_ms=5000, **expected)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn(sentence, result.stderr)

    def test_a_page_plays_and_each_entry_shows_its_slide(self):
        page = self.page()
        summary = self.assert_plays(page, title="A Lecture", author="Anna Keller", entries=["First", "Second", "Third"])
        self.assertAlmostEqual(summary["duration"], 3 * SECONDS, delta=0.2)
        slides = [thumb(page.folder / "media.mp4", (n + 0.5) * SECONDS) for n in range(3)]
        for number in range(3):
            frame = thumb(page.out / f"entry-{number + 1}.png")
            distances = [difference(frame, slide) for slide in slides]
            self.assertEqual(distances.index(min(distances)), number)
            self.assertLess(min(distances), 4)

    def test_screenshots_have_the_sizes_that_their_names_say(self):
        page = self.page()
        self.assert_plays(page)
        for name, size in (("page-1440x900", "1440,900"), ("page-390x844", "390,844"), ("page-dark", "1440,900")):
            probe = run("ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0",
                        page.out / f"{name}.png")
            self.assertEqual(probe.stdout.strip(), size)

    def test_a_silent_movie_is_noticed(self):
        page = self.page(sound="anullsrc")
        self.assert_fails(page, "the sound is silent")
        self.assert_plays(page, silent=True)

    def test_another_title_is_noticed(self):
        self.assert_fails(self.page(), "title: expected", title="Another Lecture")

    def test_an_entry_beyond_the_movie_is_noticed(self):
        page = self.page()
        page.config["index"][2]["time"] = "60000"
        page.write_config()
        self.assert_fails(page, "entry 3 does not seek to 60000 ms")

    def test_a_publication_without_its_data_says_that_it_is_not_complete(self):
        page = self.page()
        (page.folder / "config.js").unlink()
        self.assert_fails(page, "This publication is not complete")

    def test_a_missing_movie_is_told(self):
        page = self.page()
        (page.folder / "media.mp4").unlink()
        self.assert_fails(page, "The movie cannot be played")

    def test_a_missing_photo_leaves_no_broken_picture(self):
        page = self.page()
        (page.folder / "author.png").unlink()
        self.assert_fails(page, "the photo is not shown")

