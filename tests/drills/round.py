"""One round of a drill: a recording that is disturbed, and what has to hold afterwards whatever happened to it."""
import os
import pathlib
import re
import signal
import time

import stage
from lecture_test import TITLES
from stage import Folder, Recording, Settings, complaints, info, run, verify

# The slides that the second recording of a round shows: few, and no others need to be waited for.
AGAIN_FROM = 7
AGAIN = TITLES[5:]


def places(entries):
    """Titles and positions. A look at a growing package may see an entry a moment before its key frame."""
    return [(entry["title"], entry["pos_ms"]) for entry in entries]


class Round:
    """A deck, settings and a recording of it; `within` is where the deck lies (a folder of the system if None)."""

    def __init__(self, within=None, **settings):
        self.folder = Folder("drill 演习", "lecture.pptx", within)
        self.settings = Settings(self.folder.root / "settings", **settings)
        self.recording = None
        self.seen = []
        self.room = self.environment = None

    # --- the recording -------------------------------------------------------------------------------------------

    def begin(self, advance=1.5, entries=2, command="record"):
        """Starts a recording and returns when it has this many entries."""
        self.recording = Recording(self.folder.deck, advance, settings=self.settings, command=command)
        self.wait_for_entries(entries)

    def wait_for_entries(self, count):
        self.recording.wait_for_entries(self.folder.package, count)
        self.environment = self.recording.environment()
        self.room = self.environment["XDG_RUNTIME_DIR"]
        # An entry is promised with its picture; on a busy machine that comes a moment later.
        self.seen = [entry for entry in info(self.folder.package)["index"] if entry["key_frame"]]

    def act(self, *command, check=True):
        """A command of somebody who sits at the recording's screen."""
        return run(*command, check=check, env=self.environment)

    def key(self, name):
        """A key for the show; its window has the keyboard."""
        self.act("xdotool", "key", "--clearmodifiers", name)

    def ends(self, status, *sentences):
        """Waits for the end; exit code and what was said must be these."""
        output = self.recording.wait()
        status = status if isinstance(status, tuple) else (status,)
        assert self.recording.process.returncode in status, (self.recording.process.returncode, output)
        for sentence in sentences:
            assert re.search(sentence, output), f"not said: {sentence}\n{output}"
        self.see_nobody_left()

    # --- what has to hold ------------------------------------------------------------------------------------------

    def lodgers(self):
        """Processes that were started for the recording and still live."""
        here = []
        for pid in (int(name) for name in os.listdir("/proc") if name.isdigit()):
            if stage.environment_of(pid).get("XDG_RUNTIME_DIR") == self.room:
                here.append((pid, pathlib.Path(f"/proc/{pid}/comm").read_text().strip()))
        return here

    def see_nobody_left(self):
        deadline = time.monotonic() + 60
        left = "somebody, who cannot be named"
        while time.monotonic() < deadline:
            try:
                left = self.lodgers()
            except OSError:
                continue  # one ended while it was looked at
            if not left:
                return
            time.sleep(0.2)
        raise AssertionError(f"still running: {left}")

    def check(self, titles=None):
        """What was shown is kept, and the deck can be recorded again at once, without a word about the past but that
        something was recovered. `titles`: the whole index must be these."""
        before = info(self.folder.package)["index"]
        assert places(before[:len(self.seen)]) == places(self.seen), (self.seen, before)
        found = [entry["title"] for entry in before]
        if titles is not None:
            assert found == titles, found
        again = Recording(self.folder.deck, 1, "--from", str(AGAIN_FROM), settings=self.settings)
        try:
            output = again.wait()
            assert again.process.returncode == 0, output
        finally:
            again.end()
        self.check_whole(before)
        return output

    def check_whole(self, before):
        after = info(self.folder.package)
        assert places(after["index"][:len(before)]) == places(before), (before, after["index"])
        assert all(entry["key_frame"] for entry in after["index"]), after["index"]
        assert [entry["title"] for entry in after["index"][len(before):]] == AGAIN, after["index"]
        report = verify(self.folder.package)
        assert report["state"] == "whole", report
        assert complaints(self.folder.package) == ""
        left = sorted(path.name for path in self.folder.path.iterdir())
        assert left == ["lecture.ktr", "lecture.pptx"], left

    def end(self):
        if self.recording:
            for name in ("soffice.bin", "kestrum", "ksmedia"):
                for pid in self.recording.children(name):
                    os.kill(pid, signal.SIGCONT)
            self.recording.end()
        self.folder.remove()
