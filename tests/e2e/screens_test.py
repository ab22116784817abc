"""Real monitors with real modes: the resolution dialogs, the monitor that is recorded, a mode that changes."""
import os
import pathlib
import time
import unittest

from stage import (KESTRUM, PATIENCE, Desk, Folder, complaints, info, last_path, nearest, run, slide_thumbs, thumb,
                   verify)

FULL = "1920x1080,1280x720,1024x768"
PICTURES = os.environ.get("KESTRUM_PICTURES")  # a folder for pictures of the screen, to be looked at


class ScreensTest(unittest.TestCase):
    def desk(self, *monitors, **settings):
        desk = Desk(*monitors, **settings)
        self.addCleanup(desk.end)
        return desk

    def folder(self):
        folder = Folder("screens", "lecture.pptx")
        self.addCleanup(folder.remove)
        return folder

    def look(self, desk, name):
        if PICTURES:
            desk.picture(pathlib.Path(PICTURES) / f"{self.id().split('.')[-1]}-{name}.png")

    def in_the_middle(self, place, monitor):
        """A window stands in the middle of its monitor, give or take its frame."""
        x, y, width, height = place
        monitor_width, monitor_height, left, top = monitor
        self.assertAlmostEqual(x + width / 2, left + monitor_width / 2, delta=30)
        self.assertAlmostEqual(y + height / 2, top + monitor_height / 2, delta=40)

    def begin_to_record(self, desk, folder):
        """Presses Record as a person does, up to the volume, which each program asks for at its first recording."""
        recording = desk.start(KESTRUM, "record", folder.deck)
        desk.window("Volume Setting")
        desk.press("Return")
        return recording

    def give_lecture(self, desk, folder, recording, entries=1):
        desk.wait_for_entries(folder.package, entries, recording)
        time.sleep(2)
        desk.press("Escape")
        self.assertEqual(recording.wait(timeout=PATIENCE), 0, desk.log.read_text())

    # --- the command ----------------------------------------------------------------------------------------------

    def test_the_command_changes_the_mode_at_once_and_keeps_it(self):
        desk = self.desk(FULL, "1280x1024")
        dialog = desk.start(KESTRUM, "resolution")
        self.in_the_middle(desk.window("Screen Resolution"), desk.monitor())
        self.look(desk, "entry")
        desk.press("Down")
        desk.wait_for("the recommended mode", lambda: desk.monitor() == (1280, 720, 0, 0))
        time.sleep(1)
        self.look(desk, "recommended")
        self.in_the_middle(desk.window("Screen Resolution"), desk.monitor())
        self.assertEqual(desk.monitor("DUMMY1"), (1280, 1024, 1280, 0))
        desk.press("Escape")
        self.assertEqual(dialog.wait(timeout=PATIENCE), 0)
        self.assertEqual(desk.monitor(), (1280, 720, 0, 0))

    def test_the_command_ended_by_a_signal_keeps_the_mode(self):
        desk = self.desk(FULL)
        dialog = desk.start(KESTRUM, "resolution")
        desk.window("Screen Resolution")
        desk.press("Down")
        desk.wait_for("the recommended mode", lambda: desk.monitor() == (1280, 720, 0, 0))
        dialog.terminate()
        self.assertEqual(dialog.wait(timeout=PATIENCE), 143)
        self.assertEqual(desk.monitor(), (1280, 720, 0, 0))

    # --- on which monitor -----------------------------------------------------------------------------------------

    def test_the_first_run_asks_for_the_monitor_and_every_recording_takes_it(self):
        desk, folder = self.desk("1280x720", "1024x768", firstRunDone=""), self.folder()
        recording = desk.start(KESTRUM, "record", folder.deck)
        desk.window("Your First Recording")
        desk.press("Tab", "Down")  # from the microphone to the monitor; from Automatic, the second one, to the first
        self.look(desk, "question")
        desk.press("Return")
        desk.window("Volume Setting")
        desk.press("Return")
        self.give_lecture(desk, folder, recording)
        first = info(folder.package)
        self.assertEqual((first["width"], first["height"]), (1280, 720))
        slides = slide_thumbs(folder.deck, folder.root)
        self.assertEqual(nearest(thumb(folder.package, 1), slides, 0.25), 0)
        self.give_lecture(desk, folder, self.begin_to_record(desk, folder), len(first["index"]) + 1)
        both = info(folder.package)
        self.assertEqual(both["index"][:len(first["index"])], first["index"])
        self.assertEqual(nearest(thumb(folder.package, both["duration_ms"] / 1000 - 1), slides, 0.25), 0)

    # --- in front of a recording ----------------------------------------------------------------------------------

    def test_a_large_frame_at_the_recommended_resolution(self):
        desk, folder = self.desk(FULL), self.folder()
        recording = self.begin_to_record(desk, folder)
        self.in_the_middle(desk.window("Screen Resolution"), desk.monitor())
        self.look(desk, "dialog")
        desk.press("Down")
        desk.wait_for("the recommended mode", lambda: desk.monitor() == (1280, 720, 0, 0))
        time.sleep(1)
        self.look(desk, "changed")
        self.in_the_middle(desk.window("Screen Resolution"), desk.monitor())
        desk.press("Return")
        self.give_lecture(desk, folder, recording)
        told = info(folder.package)
        self.assertEqual((told["width"], told["height"]), (1280, 720))
        slides = slide_thumbs(folder.deck, folder.root)
        frame = thumb(folder.package, told["duration_ms"] / 1000 - 1)
        self.assertEqual(nearest(frame, slides, 0.25), 0)
        self.assertEqual(desk.monitor(), (1280, 720, 0, 0), "the mode stays")

    def test_a_large_frame_cancelled(self):
        desk, folder = self.desk(FULL), self.folder()
        recording = self.begin_to_record(desk, folder)
        desk.window("Screen Resolution")
        desk.press("Down")
        desk.wait_for("the recommended mode", lambda: desk.monitor() == (1280, 720, 0, 0))
        desk.press("Escape")
        self.assertEqual(recording.wait(timeout=PATIENCE), 1, desk.log.read_text())
        self.assertEqual(desk.monitor(), (1920, 1080, 0, 0))
        self.assertFalse(folder.package.exists())
        self.assertFalse(pathlib.Path(str(folder.package) + "._tmp").exists())

    def test_a_signal_answers_the_questions_before_a_recording(self):
        desk, folder = self.desk(FULL), self.folder()
        recording = desk.start(KESTRUM, "record", folder.deck)
        desk.window("Volume Setting")
        recording.terminate()
        self.assertEqual(recording.wait(timeout=PATIENCE), 143, desk.log.read_text())
        recording = self.begin_to_record(desk, folder)
        desk.window("Screen Resolution")
        desk.press("Down")
        desk.wait_for("the recommended mode", lambda: desk.monitor() == (1280, 720, 0, 0))
        recording.terminate()
        self.assertEqual(recording.wait(timeout=PATIENCE), 143, desk.log.read_text())
        self.assertEqual(desk.monitor(), (1920, 1080, 0, 0))
        self.assertFalse(folder.package.exists())

    def test_media_of_another_size_get_their_resolution_back(self):
        desk, folder = self.desk(FULL), self.folder()
        desk.run("xrandr", "--output", "DUMMY0", "--mode", "1280x720-50")
        desk.run(KESTRUM, "record", folder.deck, "--advance", "1")
        first = info(folder.package)
        self.assertEqual((first["width"], first["height"]), (1280, 720))
        desk.run("xrandr", "--output", "DUMMY0", "--mode", "1920x1080-50")
        recording = self.begin_to_record(desk, folder)
        desk.window("Screen Resolution")
        self.look(desk, "dialog")
        desk.press("Down")
        desk.wait_for("the mode of the media", lambda: desk.monitor() == (1280, 720, 0, 0))
        desk.press("Return")
        self.give_lecture(desk, folder, recording, len(first["index"]) + 1)
        both = info(folder.package)
        self.assertEqual(both["index"][:len(first["index"])], first["index"])
        self.assertGreater(both["duration_ms"], first["duration_ms"] + 1500)

    def test_media_of_another_size_are_fitted_and_published(self):
        desk, folder = self.desk(FULL), self.folder()
        desk.run("xrandr", "--output", "DUMMY0", "--mode", "1280x720-50")
        desk.run(KESTRUM, "record", folder.deck, "--advance", "1")
        first = info(folder.package)
        desk.run("xrandr", "--output", "DUMMY0", "--mode", "1920x1080-50")
        desk.run(KESTRUM, "record", folder.deck, "--advance", "1", "--from", "6")
        self.assertEqual(desk.monitor(), (1920, 1080, 0, 0), "a run without a person changes no display")
        both = info(folder.package)
        self.assertEqual((both["width"], both["height"]), (1280, 720))
        self.assertEqual(verify(folder.package)["state"], "whole")
        page = last_path(run(KESTRUM, "publish", "mp4", folder.package).stdout, "page")
        slides = slide_thumbs(folder.deck, folder.root)
        for media in (folder.package, page.parent / "media.mp4"):
            self.assertEqual(complaints(media), "")
            frame = thumb(media, (both["index"][len(first["index"])]["pos_ms"] + 700) / 1000)
            self.assertEqual(nearest(frame, slides, 0.25), 4, media)

    # --- which monitor, and a change in mid-recording -------------------------------------------------------------

    def test_the_monitor_of_the_show_is_recorded(self):
        desk, folder = self.desk("1024x768,1280x720", "1280x1024"), self.folder()
        recording = desk.start(KESTRUM, "record", folder.deck, "--advance", "3")
        desk.wait_for_entries(folder.package, 2, recording)
        self.look(desk, "show")
        self.assertEqual(recording.wait(timeout=PATIENCE), 0, desk.log.read_text())
        told = info(folder.package)
        self.assertEqual((told["width"], told["height"]), (1280, 720), "the slide on the second monitor")
        slides = slide_thumbs(folder.deck, folder.root)
        for number, entry in enumerate(told["index"]):
            frame = thumb(folder.package, entry["pos_ms"] / 1000 + 1)
            self.assertEqual(nearest(frame, slides, 0.25), number)

    def changed_in_mid_recording(self, desk, *change):
        folder = self.folder()
        recording = desk.start(KESTRUM, "record", folder.deck, "--advance", "3")
        desk.wait_for_entries(folder.package, 2, recording)
        desk.run("xrandr", *change)
        self.assertEqual(recording.wait(timeout=PATIENCE), 1, desk.log.read_text())
        self.assertIn("does not have support for changing screen resolution", desk.log.read_text())
        told = info(folder.package)
        self.assertEqual(verify(folder.package)["state"], "whole")
        self.assertEqual(told["state"], "whole")
        self.assertGreater(told["duration_ms"], told["index"][-1]["pos_ms"])
        self.assertLess(told["duration_ms"], told["index"][-1]["pos_ms"] + 12000)
        self.assertFalse(pathlib.Path(str(folder.package) + "._tmp").exists())
        return folder

    def test_a_change_of_the_resolution_ends_the_recording_in_order(self):
        desk = self.desk(FULL)
        folder = self.changed_in_mid_recording(desk, "--output", "DUMMY0", "--mode", "1280x720-50")
        desk.run("xrandr", "--output", "DUMMY0", "--mode", "1920x1080-50")
        before = info(folder.package)
        desk.run(KESTRUM, "record", folder.deck, "--advance", "1", "--from", "6")  # the next one is not disturbed
        self.assertGreater(info(folder.package)["duration_ms"], before["duration_ms"] + 1500)

    def test_a_monitor_unplugged_in_mid_recording_ends_it_in_order(self):
        desk = self.desk("1024x768,1280x720", "1280x720")
        self.changed_in_mid_recording(desk, "--output", "DUMMY1", "--off")


if __name__ == "__main__":
    unittest.main()
