"""A short choice of the drills, one round each: what happens to a recording most often, and what would hurt most."""
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "drills"))

import faults  # noqa: E402 (found through the path above)


class DrillsTest(unittest.TestCase):
    def test_the_worker_dies(self):
        faults.once("worker_killed")

    def test_the_office_hangs(self):
        faults.once("office_hangs")

    def test_the_disk_is_full_from_one_moment_to_the_next(self):
        faults.once("disk_full")

    def test_the_screen_goes(self):
        faults.once("screen_killed")

    def test_the_system_asks_the_recorder_to_end(self):
        faults.once("terminated")

    def test_other_commands_and_recorders_come_in_between(self):
        faults.once("commands_meanwhile")
        faults.once("second_recorder")


if __name__ == "__main__":
    unittest.main()
