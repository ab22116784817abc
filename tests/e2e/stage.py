"""What the end-to-end tests stand on: the programs of the release build, a private screen, pictures as numbers."""
import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
INSTALL = pathlib.Path(os.environ.get("KESTRUM_INSTALL", ROOT / "build" / "release" / "install"))
KESTRUM = INSTALL / "kestrum"
PATIENCE = 600  # seconds; a bound for a hang, not a measure of speed

# Small pictures are enough to tell slides from each other.
THUMB = (64, 36)


def run(*command, check=True, timeout=PATIENCE, **options):
    """Runs a command and gives its result; a failure shows what it printed."""
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=timeout, **options)
    if check and result.returncode != 0:
        raise AssertionError(f"{command} ended with {result.returncode}\n{result.stdout}\n{result.stderr}")
    return result


def on_stage(*command, check=True, timeout=PATIENCE):
    """The same on a private screen whose microphone hears speech."""
    return run(ROOT / "tools" / "private-screen", "--speech", ROOT / "samples" / "speech.txt", *command, check=check,
               timeout=timeout)


def environment_of(pid):
    """The environment of a process as it was started; empty if it is gone."""
    try:
        words = pathlib.Path(f"/proc/{pid}/environ").read_bytes().split(b"\0")
    except OSError:
        return {}
    return dict(os.fsdecode(word).split("=", 1) for word in words if b"=" in word)


def info(package):
    return json.loads(run(KESTRUM, "info", "--json", package).stdout)


def verify(package, *options):
    """What verify says about a package; its exit code must be one that it promises."""
    result = run(KESTRUM, "verify", "--json", *options, package, check=False)
    assert result.returncode in (0, 3, 4, 5), result.stderr
    return json.loads(result.stdout)


def complaints(media):
    """What a decoder complains about; nothing, if all of the media is sound."""
    # In the time base of the file: at a guessed picture rate two pictures that lie close together fall on one time.
    return run("ffmpeg", "-v", "error", "-i", media, "-fps_mode", "passthrough", "-enc_time_base", "-1", "-f", "null",
               "-").stderr


def last_path(output, name):
    """The path behind the last line "name: PATH" of an output."""
    return pathlib.Path(re.findall(rf"^{name}: (.+)$", output, re.M)[-1])


def thumb(picture, seconds=None):
    """A picture, or what a movie shows at a time (the last frame that began by then), as grey values of a small image."""
    until = [] if seconds is None else ["-to", f"{seconds + 0.0005:.4f}"]
    result = subprocess.run(["ffmpeg", "-v", "error", "-i", str(picture), *until, "-an", "-vsync", "passthrough", "-vf",
                             f"scale={THUMB[0]}:{THUMB[1]}:flags=area,format=gray", "-f", "rawvideo", "-"],
                            capture_output=True, timeout=PATIENCE, check=True)
    size = THUMB[0] * THUMB[1]
    assert result.stdout and len(result.stdout) % size == 0, f"no picture in {picture} at {seconds}"
    return result.stdout[-size:]


def difference(one, other):
    """Mean difference of two thumbs, 0 to 255."""
    return sum(abs(a - b) for a, b in zip(one, other)) / len(one)


def nearest(frame, slides, part=1.0):
    """Index of the slide that a frame resembles most, looking at the upper part of the pictures only."""
    size = int(THUMB[1] * part) * THUMB[0]
    distances = [difference(frame[:size], slide[:size]) for slide in slides]
    return distances.index(min(distances))


def slide_thumbs(deck, folder):
    """A thumb for each visible slide of a deck, as Impress exports it."""
    profile = pathlib.Path(folder) / "export-profile"
    run("soffice", f"-env:UserInstallation=file://{profile}", "--headless", "--convert-to", "pdf", "--outdir", folder,
        deck)
    pdf = pathlib.Path(folder) / (pathlib.Path(deck).stem + ".pdf")
    run("pdftoppm", "-png", "-r", "48", pdf, pathlib.Path(folder) / "slide")
    pages = sorted(pathlib.Path(folder).glob("slide-*.png"))
    return [thumb(page) for page in pages]


class Folder:
    """A folder with a deck in it, under a name that tests the handling of names."""

    def __init__(self, name="课件 week 1", deck="关键帧 lecture.pptx", within=None):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-e2e.", dir=within))
        self.path = self.root / name
        self.path.mkdir()
        self.deck = self.path / deck
        shutil.copy(ROOT / "samples" / "lecture.pptx", self.deck)
        self.package = self.deck.with_suffix(".ktr")

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)


class Settings:
    """Settings of the recorder in a folder of their own, which several runs can share. Nothing is asked or shown around
    a recording unless the test wants it."""

    def __init__(self, folder, **values):
        values = {"firstRunDone": "1", "chkShowAfter": "0", **values}
        self.folder = pathlib.Path(folder)
        file = self.folder / "kestrum" / "settings.sqlite"
        file.parent.mkdir(parents=True)
        with contextlib.closing(sqlite3.connect(file)) as store, store:
            store.execute("CREATE TABLE settings (application TEXT, section TEXT, key TEXT, value TEXT NOT NULL,"
                          " PRIMARY KEY (application, section, key)) WITHOUT ROWID")
            store.executemany("INSERT INTO settings VALUES ('Larkspin5', 'configure', ?, ?)", values.items())


class Recording:
    """A recording under way on a screen of its own, to be disturbed."""

    def __init__(self, deck, advance=None, *options, settings=None, command="record", size="1920x1080",
                 desktop="openbox"):
        self._log = tempfile.TemporaryFile(mode="w+")
        kept = ["--settings", str(settings.folder)] if settings else []
        pace = ["--advance", str(advance)] if advance else []
        self.process = subprocess.Popen(
            [str(ROOT / "tools" / "private-screen"), "--speech", str(ROOT / "samples" / "speech.txt"), *kept,
             "--size", size, "--desktop", desktop, str(KESTRUM), command, str(deck), *pace, *options],
            stdout=self._log, stderr=subprocess.STDOUT, start_new_session=True)

    def children(self, name):
        """Process ids below the recording whose program is `name`."""
        table = run("ps", "-eo", "pid=,ppid=,comm=").stdout.split("\n")
        rows = [line.split(None, 2) for line in table if line.strip()]
        below, grown = {self.process.pid}, True
        while grown:
            more = {int(pid) for pid, parent, _ in rows if int(parent) in below} - below
            grown, below = bool(more), below | more
        return [int(pid) for pid, _, program in rows if int(pid) in below and program.strip().startswith(name)]

    def environment(self):
        """The environment in which the recorder runs: its screen, its sound server, its settings."""
        for pid in self.children("kestrum"):
            words = environment_of(pid)
            if "PULSE_SERVER" in words:
                return words
        raise AssertionError("no recorder runs:\n" + self.output())

    def wait_until(self, what, condition):
        """Waits until the condition holds; the recording must go on meanwhile."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            assert self.process.poll() is None, f"the recording ended before {what}:\n" + self.output()
            if condition():
                return
            time.sleep(0.2)
        raise AssertionError(f"never saw {what}:\n" + self.output())

    def wait_for_entries(self, package, count):
        """Waits until the growing package shows this many entries."""
        def has_them():
            if not package.exists():
                return False
            answer = run(KESTRUM, "info", "--json", package, check=False)
            return answer.returncode == 0 and len(json.loads(answer.stdout)["index"]) >= count
        self.wait_until(f"{count} entries", has_them)

    def signal(self, number, *names):
        """A signal for all of these programs at one moment, so that none can react to the end of another."""
        victims = [self.children(name) for name in names]
        assert all(victims), f"not all of {names} run below the recording"
        for pid in sum(victims, []):
            os.kill(pid, number)

    def kill(self, *names):
        self.signal(signal.SIGKILL, *names)

    def wait(self):
        self.process.wait(timeout=PATIENCE)
        return self.output()

    def end(self):
        if self.process.poll() is None:
            os.killpg(self.process.pid, signal.SIGTERM)
            self.process.wait(timeout=60)
        self._log.close()

    def output(self):
        self._log.seek(0)
        return self._log.read()


class Desk:
    """A private screen with the monitors named (tools/xorg-monitors) that stays; a test works on it with the keyboard."""

    def __init__(self, *monitors, size="1920x1080", **settings):
        self.room = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-desk."))
        words = [word for monitor in monitors for word in ("--monitor", monitor)] or ["--size", size]
        words += ["--settings", str(Settings(self.room / "settings", **settings).folder)]
        script = 'env -0 >"$1/env.new"; mv "$1/env.new" "$1/env"; exec sleep 86400'
        self.process = subprocess.Popen(
            [str(ROOT / "tools" / "private-screen"), "--speech", str(ROOT / "samples" / "speech.txt"), *words, "sh",
             "-c", script, "desk", str(self.room)], start_new_session=True)
        self.wait_for("the private screen", (self.room / "env").exists)
        text = (self.room / "env").read_text().rstrip("\0")
        self.env = dict(line.split("=", 1) for line in text.split("\0"))
        self.started = []

    def end(self):
        for process in self.started:
            if process.poll() is None:
                process.terminate()
                process.wait(timeout=60)
        os.killpg(self.process.pid, signal.SIGTERM)
        self.process.wait(timeout=60)
        shutil.rmtree(self.room, ignore_errors=True)

    @staticmethod
    def wait_for(what, done):
        deadline = time.monotonic() + PATIENCE
        while not done():
            assert time.monotonic() < deadline, f"{what} never came"
            time.sleep(0.2)

    def run(self, *command, **options):
        return run(*command, env=self.env, **options)

    def start(self, *command):
        """A program that runs on; its output goes to `log`."""
        self.log = self.room / "log"
        with open(self.log, "w") as log:
            process = subprocess.Popen([str(word) for word in command], env=self.env, stdout=log, stderr=log)
        self.started.append(process)
        return process

    def press(self, *keys):
        """Keys for the window that has the keyboard, one after the other."""
        for key in keys:
            self.run("xdotool", "key", key)
            time.sleep(0.3)

    def window(self, title):
        """Waits for a window of this title that has the keyboard; its place: x, y, width, height."""
        def active():
            name = self.run("xdotool", "getactivewindow", "getwindowname", check=False)
            return name.returncode == 0 and name.stdout.strip() == title
        self.wait_for(f"the window {title}", active)
        time.sleep(0.3)  # the keyboard is there; the controls take it next
        shell = self.run("xdotool", "getactivewindow", "getwindowgeometry", "--shell").stdout
        place = dict(line.split("=") for line in shell.split())
        return tuple(int(place[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def monitor(self, output="DUMMY0"):
        """Place of a monitor: width, height, x, y; None while it is off."""
        state = self.run("xrandr", "--current").stdout
        found = re.search(rf"^{output} connected (?:primary )?(\d+)x(\d+)\+(\d+)\+(\d+)", state, re.M)
        return tuple(int(number) for number in found.groups()) if found else None

    def picture(self, path):
        """What is on the screen, for a person to look at."""
        self.run("import", "-window", "root", path, check=False)

    def wait_for_entries(self, package, count, process):
        def there():
            assert process.poll() is None, "the recording ended early:\n" + self.log.read_text()
            answer = run(KESTRUM, "info", "--json", package, check=False) if package.exists() else None
            return answer and answer.returncode == 0 and len(json.loads(answer.stdout)["index"]) >= count
        self.wait_for(f"{count} entries", there)
