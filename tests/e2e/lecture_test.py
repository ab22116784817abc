"""One real lecture, end to end: recorded in Impress, described, published, played, continued, interrupted."""
import json
import pathlib
import re
import subprocess
import unittest

import stage
from stage import (KESTRUM, Folder, Recording, complaints, info, last_path, nearest, on_stage, run, slide_thumbs, thumb,
                   verify)

# The visible slides of samples/lecture.pptx.
TITLES = ["How a Key Frame Works", "A video is mostly repetition", "Seeking starts at the key frame before",
          "关键帧是什么？", "What a key frame costs", "How a player finds your slide", "Three things to take home"]

# The part of a slide that is there from the first moment, builds or not.
TITLE_PART = 0.25


class LectureTest(unittest.TestCase):
    """Recorded and published once; each test looks at another side of the result."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Folder()
        cls.addClassCleanup(cls.folder.remove)
        cls.record = on_stage(KESTRUM, "record", cls.folder.deck, "--advance", "3")
        cls.package = last_path(cls.record.stdout, "package")
        cls.publish = run(KESTRUM, "publish", "mp4", cls.folder.deck)
        cls.page = last_path(cls.publish.stdout, "page")
        cls.info = info(cls.package)
        cls.slides = slide_thumbs(cls.folder.deck, cls.folder.root)

    def test_the_package_lies_beside_the_deck(self):
        self.assertEqual(self.package, self.folder.package)
        self.assertFalse(pathlib.Path(str(self.package) + "._tmp").exists())

    def test_one_entry_for_each_slide_shown_with_its_title(self):
        self.assertEqual([entry["title"] for entry in self.info["index"]], TITLES)

    def test_every_entry_is_at_a_key_frame_in_ascending_order(self):
        positions = [entry["pos_ms"] for entry in self.info["index"]]
        self.assertEqual(positions[0], 0)
        self.assertEqual(positions, sorted(set(positions)))
        self.assertTrue(all(entry["key_frame"] for entry in self.info["index"]))
        self.assertLess(positions[-1], self.info["duration_ms"])

    def test_the_package_is_whole(self):
        before = self.package.read_bytes()
        report = verify(self.package)
        self.assertEqual((report["state"], report["findings"]), ("whole", []))
        self.assertEqual(report["entries"], len(TITLES))
        self.assertEqual(verify(self.package, "--repair")["state"], "whole")
        self.assertEqual(self.package.read_bytes(), before)

    def test_the_package_tells_title_author_size_and_stored_files(self):
        self.assertEqual(self.info["title"], "How a Key Frame Works")
        self.assertTrue(self.info["author"])
        self.assertEqual((self.info["width"], self.info["height"]), (1920, 1080))
        sizes = {stored["name"]: stored["size"] for stored in self.info["stored_files"]}
        self.assertGreater(sizes["project.ksp"], 500)
        self.assertGreater(sizes["cursor.gif"], 0)
        self.assertGreater(sizes["photo.gif"], 0)

    def test_other_readers_take_the_package_without_complaint(self):
        probe = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_type,codec_name", "-of", "json",
                    self.package)
        self.assertEqual(probe.stderr, "")
        codecs = {stream["codec_type"]: stream["codec_name"] for stream in json.loads(probe.stdout)["streams"]
                  if stream["codec_type"] in ("video", "audio")}
        self.assertEqual(codecs, {"video": "h264", "audio": "aac"})
        self.assertEqual(complaints(self.package), "")
        tree = run("mkvinfo", self.package)
        self.assertNotRegex(tree.stdout + tree.stderr, r"(?i)error|unknown element|damaged")

    def test_sound_is_not_silent(self):
        for media in (self.package, self.page.parent / "media.mp4"):
            levels = subprocess.run(["ffmpeg", "-hide_banner", "-i", str(media), "-af", "volumedetect", "-vn", "-f",
                                     "null", "-"], capture_output=True, text=True, timeout=stage.PATIENCE).stderr
            loudest = float(re.search(r"max_volume: (-?[\d.]+) dB", levels).group(1))
            self.assertGreater(loudest, -30, f"{media} is almost silent")

    def test_each_entry_shows_its_slide(self):
        self.assertEqual(len(self.slides), len(TITLES))
        for number, entry in enumerate(self.info["index"]):
            frame = thumb(self.package, entry["pos_ms"] / 1000)
            self.assertEqual(nearest(frame, self.slides, TITLE_PART), number, f"at entry {number + 1}")
            # Before the next change the builds have come in: the whole slide is there.
            later = self.info["index"][number + 1]["pos_ms"] if number + 1 < len(TITLES) else self.info["duration_ms"]
            frame = thumb(self.package, later / 1000 - 0.6)
            self.assertEqual(nearest(frame, self.slides), number, f"at the end of slide {number + 1}")

    def test_the_page_plays_and_each_entry_seeks_to_its_slide(self):
        out = self.folder.root / "player"
        out.mkdir()
        expected = self.folder.root / "expected.json"
        expected.write_text(json.dumps({"title": self.info["title"], "author": self.info["author"], "entries": TITLES}))
        run("node", pathlib.Path(__file__).parent / "player.mjs", self.page, expected, out)
        for number in range(len(TITLES)):
            frame = thumb(out / f"entry-{number + 1}.png")
            self.assertEqual(nearest(frame, self.slides, TITLE_PART), number, f"entry {number + 1} seeks elsewhere")


class ContinuedTest(unittest.TestCase):
    def test_recording_the_same_deck_twice_appends(self):
        folder = Folder("two parts", "lecture.pptx")
        self.addCleanup(folder.remove)
        on_stage(KESTRUM, "record", folder.deck, "--advance", "1")
        first = info(folder.package)
        on_stage(KESTRUM, "record", folder.deck, "--advance", "1", "--from", "6")
        both = info(folder.package)
        self.assertEqual(both["index"][:len(first["index"])], first["index"])
        self.assertEqual([entry["title"] for entry in both["index"]], TITLES + TITLES[4:])
        self.assertEqual(both["index"][len(TITLES)]["pos_ms"], first["duration_ms"])
        self.assertGreater(both["duration_ms"], first["duration_ms"] + 2000)
        self.assertTrue(all(entry["key_frame"] for entry in both["index"]))
        self.assertEqual(complaints(folder.package), "")
        slides = slide_thumbs(folder.deck, folder.root)
        frame = thumb(folder.package, (both["index"][-1]["pos_ms"] + 300) / 1000)
        self.assertEqual(nearest(frame, slides), len(TITLES) - 1)


class InterruptedTest(unittest.TestCase):
    """kill -9 in the middle: the first opening afterwards finds every entry and says what it recovered."""

    def disturb(self, *victims):
        folder = Folder("cut short", "lecture.pptx")
        self.addCleanup(folder.remove)
        recording = Recording(folder.deck, 2)
        self.addCleanup(recording.end)
        recording.wait_for_entries(folder.package, 3)
        recording.kill(*victims)
        return folder, recording.wait()

    def check(self, folder):
        before = info(folder.package)
        self.assertGreaterEqual(len(before["index"]), 3)
        self.assertEqual([entry["title"] for entry in before["index"]][:3], TITLES[:3])
        self.assertGreater(before["duration_ms"], before["index"][-1]["pos_ms"])
        opening = run(KESTRUM, "publish", "mp4", folder.package)
        after = info(folder.package)
        self.assertEqual(after["index"], before["index"])
        self.assertTrue(all(entry["key_frame"] for entry in after["index"]))
        self.assertEqual(complaints(folder.package), "")
        self.assertTrue(last_path(opening.stdout, "page").exists())
        return opening.stdout

    def test_a_killed_recorder(self):
        folder, _ = self.disturb("kestrum")
        self.assertIn("recover", self.check(folder).lower())

    def test_a_killed_recording_is_told_and_mended_by_verify(self):
        folder, _ = self.disturb("ksmedia", "kestrum")
        told, interrupted = info(folder.package), folder.package.read_bytes()
        report = verify(folder.package)
        self.assertEqual(report["state"], "damaged")
        self.assertIn("interrupted", [finding["kind"] for finding in report["findings"]])
        self.assertTrue(all(finding["mendable"] for finding in report["findings"]))
        self.assertEqual(folder.package.read_bytes(), interrupted)
        mended = verify(folder.package, "--repair")
        self.assertEqual(mended["state"], "repaired", mended)
        self.assertEqual(pathlib.Path(mended["kept"]).read_bytes(), interrupted)
        self.assertEqual(verify(folder.package)["state"], "whole")
        self.assertEqual(info(folder.package)["index"], told["index"])
        self.assertFalse(pathlib.Path(str(folder.package) + "._tmp").exists())

    def test_a_killed_worker(self):
        folder, output = self.disturb("ksmedia")
        self.assertIn("recover", (output + self.check(folder)).lower())

    def test_a_killed_office(self):
        folder, _ = self.disturb("soffice.bin")
        self.check(folder)


class RefusedTest(unittest.TestCase):
    """Bad input gets one sentence and changes nothing."""

    def setUp(self):
        self.folder = Folder("refused", "lecture.pptx")
        self.addCleanup(self.folder.remove)

    def refused(self, *command, pattern, stage_needed=False):
        result = (on_stage if stage_needed else run)(KESTRUM, *command, check=False)
        self.assertNotEqual(result.returncode, 0, result.stdout)
        sentence = result.stderr.strip().split("\n")[-1]
        self.assertRegex(sentence, pattern)
        self.assertEqual(sorted(path.name for path in self.folder.path.iterdir()), self.names_before)

    def names(self):
        self.names_before = sorted(path.name for path in self.folder.path.iterdir())

    def test_a_missing_deck(self):
        self.names()
        self.refused("record", self.folder.path / "none.pptx", pattern=r"(?i)none\.pptx")

    def test_a_text_that_calls_itself_a_deck(self):
        deck = self.folder.path / "letter.pptx"
        deck.write_text("Dear students,\n")
        self.names()
        self.refused("record", deck, "--advance", "1", pattern=r"(?i)letter\.pptx.*presentation", stage_needed=True)

    def test_a_package_that_is_none(self):
        package = self.folder.package
        package.write_text("this is no package, but somebody's file\n" * 100)
        content = package.read_bytes()
        self.names()
        self.refused("info", package, pattern=r"(?i)not a .*package")
        self.refused("publish", "mp4", package, pattern=r"(?i)not a .*package")
        self.refused("record", self.folder.deck, "--advance", "1", pattern=r"(?i)not a .*package", stage_needed=True)
        self.assertEqual(package.read_bytes(), content)

    def test_a_missing_package(self):
        self.names()
        self.refused("info", self.folder.package, pattern=r"(?i)lecture\.ktr")
        self.refused("publish", "mp4", self.folder.deck, pattern=r"(?i)lecture")

    def test_a_display_that_cannot_be_opened(self):
        self.names()
        self.refused_with({"DISPLAY": ":987"}, pattern=r"(?i)display|screen")

    def test_a_wayland_session(self):
        self.names()
        self.refused_with({"XDG_SESSION_TYPE": "wayland", "WAYLAND_DISPLAY": "wayland-0", "DISPLAY": ":987"},
                          pattern=r"(?i)wayland")

    def refused_with(self, environment, pattern):
        variables = [f"{name}={value}" for name, value in environment.items()]
        result = run("env", *variables, KESTRUM, "record", self.folder.deck, "--advance", "1", check=False)
        self.assertNotEqual(result.returncode, 0)
        self.assertRegex(result.stderr, pattern)
        self.assertEqual(sorted(path.name for path in self.folder.path.iterdir()), self.names_before)


if __name__ == "__main__":
    unittest.main()
