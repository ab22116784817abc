"""A person opens a deck in Impress, records it from the menu, publishes it from the menu, and the page plays."""
import json
import os
import pathlib
import signal
import time
import unittest

import stage
from lecture_test import TITLES
from person import Person
from stage import run, verify

VOLUME = "^Volume Setting$"
CARD = "^Recorded$"
PUBLISH = "^Publish to MP4$"
# A box of the office itself, in which the menu says what it cannot do.
OFFICE_BOX = "^Kestrum$"
# Places in the menu, counted without the lines between.
PUBLISH_ENTRY, MP4_ENTRY = 7, 1


class PersonTest(unittest.TestCase):
    def person(self, **settings):
        person = Person(pictures=os.environ.get("KESTRUM_PICTURES"), **settings)
        self.addCleanup(person.go_home)
        return person

    def present(self, person, before=0):
        """Three slides with the keyboard, then Escape."""
        person.wait_for_entries(before + 1)
        person.see("show")
        for number in (2, 3):
            time.sleep(1)
            person.press("Next")
            person.wait_for_entries(before + number)
        time.sleep(1)
        person.see("third-slide")
        self.end_show(person)

    def end_show(self, person, card=False):
        person.press("Escape")
        person.desk.wait_for("the end of the recording", lambda: person.state() == "whole")
        if card:
            person.answer(CARD, "Escape")

    def record_first(self, person):
        """Record, with the questions that come before the first recording of all."""
        person.pick_first()
        person.answer(VOLUME, "Return")

    def publish(self, person):
        """Publish > MP4, the dialog's button, and no visit to the page."""
        person.pick(PUBLISH_ENTRY, MP4_ENTRY)
        person.wait_for_window(PUBLISH)
        person.desk.run("xdotool", "windowactivate", "--sync", person.windows(PUBLISH)[-1])
        person.press("Return")
        person.answer("^Kestrum for PowerPoint$", "alt+n")
        if person.windows(PUBLISH):
            person.answer(PUBLISH, "Escape")
        return max(person.folder.path.rglob("*.html"), key=lambda page: page.stat().st_mtime)

    def play(self, person, page, entries):
        out = person.folder.root / f"player-{len(entries)}"
        out.mkdir()
        expected = out / "expected.json"
        expected.write_text(json.dumps({"entries": entries}))
        run("node", pathlib.Path(__file__).parent / "player.mjs", page, expected, out)

    def expect_refusal_of_another(self, person):
        """Never two recorders in one office."""
        words = pathlib.Path(f"/proc/{person.recorders()[0]}/cmdline").read_text().split("\0")
        other = person.desk.run(stage.KESTRUM, "attach", "--pipe", words[words.index("--pipe") + 1], check=False)
        self.assertEqual(other.returncode, 1)
        self.assertIn("already at work in this office", other.stderr)

    def test_a_lecture_recorded_and_published_from_the_menu_twice_in_the_same_office(self):
        person = self.person()
        person.open(person.folder.deck)
        self.record_first(person)
        self.present(person)
        self.assertEqual(person.entries(), TITLES[:3])
        self.play(person, self.publish(person), TITLES[:3])
        recorders = person.recorders()
        self.assertEqual(len(recorders), 1)
        self.expect_refusal_of_another(person)
        # The office stands on the slide with which the show ended.
        person.turn_to(person.folder.deck)
        person.pick_first()
        self.present(person, before=3)
        self.assertEqual(person.entries()[:3], TITLES[:3])
        self.assertEqual(len(person.entries()), 6)
        self.play(person, self.publish(person), person.entries())
        self.assertEqual(person.recorders(), recorders, "one program served both")
        self.assertEqual(verify(person.folder.package)["state"], "whole")
        person.turn_to(person.folder.deck)
        person.press("ctrl+q")
        person.desk.wait_for("the end of the office", lambda: person.office.poll() is not None)
        person.desk.wait_for("the end of the recorder", lambda: not person.recorders())

    def test_a_killed_program_is_started_anew_and_each_window_has_its_own_lecture(self):
        person = self.person(chkShowAfter="1")
        other = person.another_deck("other.pptx")
        person.open(person.folder.deck, other)
        person.turn_to(person.folder.deck)
        self.record_first(person)
        person.wait_for_entries(1)
        self.end_show(person, card=True)
        first, killed = person.folder.package.read_bytes(), person.recorders()
        self.assertEqual(len(killed), 1)
        os.kill(killed[0], signal.SIGKILL)
        person.answer(OFFICE_BOX, "Return")
        person.turn_to(other)
        person.pick_first()
        person.answer(VOLUME, "Return")
        package = other.with_suffix(".ktr")
        person.wait_for_entries(1, package)
        self.assertEqual(len(person.recorders()), 1)
        self.assertNotEqual(person.recorders(), killed)
        # Asked to end, it finishes the recording; the office stays as it is.
        os.kill(person.recorders()[0], signal.SIGTERM)
        person.desk.wait_for("the end of the recorder", lambda: not person.recorders())
        person.see("office-alone")
        self.assertEqual(verify(package)["state"], "whole")
        self.assertEqual(person.folder.package.read_bytes(), first)
        self.assertIsNone(person.office.poll())
        self.assertEqual(len(person.windows("LibreOffice Impress$")), 2)

    def test_a_show_started_by_hand_is_recorded_if_that_is_switched_on(self):
        person = self.person(chkAutoRecord="1", chkLowVolDetect="0")
        person.open(person.folder.deck)
        person.desk.wait_for("the recorder", person.recorders)
        time.sleep(2)
        person.press("F5")
        self.present(person)
        self.assertEqual(person.entries(), TITLES[:3])
