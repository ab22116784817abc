"""Everything that can happen to a recording, on the real system, one drill each. After each: the message, the exit code,
every entry that was shown, no process left, and the same deck recorded again at once.

    faults.py [ROUNDS [NAME...]]      without names all of them, round after round
"""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from lecture_test import TITLES
from round import Round
from stage import KESTRUM, info

CUT_SHORT = r"ended before the last slide"
DISK_FULL = r"there is not enough free disk space! \(free disk space < 100MB\)"
NEW_RESOLUTION = r"Kestrum does not have support for changing screen resolution"


# --- processes that die ----------------------------------------------------------------------------------------------

def worker_killed(drill):
    drill.begin()
    drill.recording.kill("ksmedia")
    drill.ends(1, r"records has stopped unexpectedly", CUT_SHORT)
    assert "ecovered" in drill.check()


def recorder_killed(drill):
    drill.begin()
    drill.recording.kill("kestrum")
    drill.ends(137)
    assert "ecovered" in drill.check()


def office_killed(drill):
    drill.begin()
    drill.recording.kill("soffice.bin")
    drill.ends(1, CUT_SHORT)
    drill.check()


def all_killed(drill):
    drill.begin()
    drill.recording.kill("ksmedia", "kestrum", "soffice.bin")
    drill.ends(137)
    assert "ecovered" in drill.check()


def screen_killed(drill):
    """The X server dies, and with it the office and the recorder; the worker finishes the package."""
    drill.begin()
    drill.recording.kill("Xvfb")
    drill.ends(tuple(range(1, 256)))
    drill.check()


# --- an office that hangs --------------------------------------------------------------------------------------------

def office_pauses(drill):
    """Less than the two seconds after which an office counts as hung."""
    drill.begin()
    drill.recording.signal(signal.SIGSTOP, "soffice.bin")
    time.sleep(0.7)
    drill.recording.signal(signal.SIGCONT, "soffice.bin")
    drill.ends(0)
    drill.check(TITLES)


def office_hangs(drill):
    drill.begin()
    drill.recording.signal(signal.SIGSTOP, "soffice.bin")
    drill.ends(1, CUT_SHORT)
    drill.check()


def office_hangs_and_is_killed(drill):
    drill.begin()
    drill.recording.signal(signal.SIGSTOP, "soffice.bin")
    time.sleep(1)
    drill.recording.kill("soffice.bin")
    drill.ends(1, CUT_SHORT)
    drill.check()


# --- sound, screen, disk, clock --------------------------------------------------------------------------------------

def sound_restarted(drill):
    """The sound server goes for three seconds and comes back: silence stands for it, then the voice is there again."""
    drill.begin(advance=2.5)
    server, = drill.recording.children("pulseaudio")
    command = pathlib.Path(f"/proc/{server}/cmdline").read_bytes().split(b"\0")[:-1]
    environment = drill.environment
    speech = pathlib.Path(drill.room).parent / "speech.wav"
    drill.recording.kill("pulseaudio")
    time.sleep(3)
    again = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    voice = None
    try:
        while subprocess.run(["pactl", "set-default-source", "mic"], env=environment, capture_output=True).returncode:
            time.sleep(0.1)
        voice = subprocess.Popen(["paplay", "-d", "micbus", str(speech)], env=environment)
        drill.wait_for_entries(len(TITLES))
        drill.recording.wait()
    finally:
        for process in (voice, again):
            if process:
                process.terminate()
                process.wait()
    drill.ends(0)
    assert loudness(drill.folder.package, -2) > -35, "no voice after the sound server came back"
    drill.check(TITLES)


def loudness(package, from_end):
    """Loudest sample of the last seconds in dB."""
    length = float(subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0",
                                   str(package)], capture_output=True, text=True, check=True).stdout)
    levels = subprocess.run(["ffmpeg", "-hide_banner", "-ss", str(max(0, length + from_end)), "-i", str(package), "-af",
                             "volumedetect", "-vn", "-f", "null", "-"], capture_output=True, text=True, check=True).stderr
    return float(levels.split("max_volume: ")[1].split(" dB")[0])


def resolution_changed(drill):
    drill.begin()
    drill.act("xrandr", "--newmode", "small", "74.5", *"1280 1344 1472 1664 720 723 728 748".split())
    drill.act("xrandr", "--addmode", "screen", "small")
    drill.act("xrandr", "--output", "screen", "--mode", "small")
    drill.ends(1, NEW_RESOLUTION)
    drill.check()


def disk_fills(drill):
    """Less than 100 MB are left."""
    drill.begin()
    fill(drill, leave=60)
    drill.ends(1, DISK_FULL)
    empty(drill)
    drill.check()


def disk_full(drill):
    """Nothing is left, from one moment to the next."""
    drill.begin()
    fill(drill, leave=0)
    drill.ends(1, DISK_FULL)
    empty(drill)
    drill.check()


def fill(drill, leave):
    """Somebody's film takes the room but for `leave` MB."""
    left = os.statvfs(drill.folder.root)
    with open(drill.folder.root / "somebody's film", "wb", buffering=0) as film:
        if leave:
            return os.posix_fallocate(film.fileno(), 0, left.f_bavail * left.f_frsize - leave * 2**20)
        try:
            while True:  # up to the last byte; the recording takes its share meanwhile
                film.write(b"\0" * 2**16)
        except OSError:
            pass


def empty(drill):
    (drill.folder.root / "somebody's film").unlink()


def asleep(drill):
    """The machine stands still for ten seconds and goes on: so does the lecture."""
    drill.begin()
    everybody = ("soffice.bin", "kestrum", "ksmedia", "Xvfb", "pulseaudio")
    drill.recording.signal(signal.SIGSTOP, *everybody)
    time.sleep(10)
    drill.recording.signal(signal.SIGCONT, *everybody)
    drill.ends(0)
    drill.check(TITLES)


# --- other recorders and commands ------------------------------------------------------------------------------------

def second_recorder(drill):
    """On another deck and on the same one: both are refused, and the first goes on as if nothing had been."""
    drill.begin(advance=3)
    other = drill.folder.path.parent / "other.pptx"
    shutil.copy(drill.folder.deck, other)
    for deck in (other, drill.folder.deck):
        refused = drill.act(KESTRUM, "record", deck, "--advance", "1", check=False)
        assert refused.returncode == 1, refused
        assert "A recording is in progress" in refused.stderr, refused
        assert "Impress" not in refused.stdout, "a second office came up over the show"
    assert not other.with_suffix(".ktr").exists()
    drill.ends(0)
    drill.check(TITLES)


def commands_meanwhile(drill):
    """What a curious user asks of a package that is being recorded changes nothing in it."""
    drill.begin(advance=3)
    package = drill.folder.package
    assert drill.act(KESTRUM, "info", package).stdout
    verdict = drill.act(KESTRUM, "verify", package, check=False)
    assert verdict.returncode == 5, verdict
    verdict = drill.act(KESTRUM, "verify", "--repair", package, check=False)
    assert verdict.returncode == 5, verdict
    published = drill.act(KESTRUM, "publish", "mp4", package, check=False)
    assert published.returncode == 1, published
    assert "is being recorded" in published.stderr, published
    assert pathlib.Path(str(package) + "._tmp/media.rec.tmp").exists(), "the snapshot of the live recording is gone"
    drill.ends(0)
    drill.check(TITLES)


# --- ends ------------------------------------------------------------------------------------------------------------

def ended_by(number):
    def drill_signal(drill):
        drill.begin()
        drill.recording.signal(number, "kestrum")
        drill.ends(128 + number)
        drill.check()
    return drill_signal


def logged_out(drill):
    """The session ends: everybody is asked to go, then the screen goes."""
    drill.begin()
    screen, = drill.recording.children("Xvfb")
    drill.recording.signal(signal.SIGTERM, "soffice.bin", "kestrum", "ksmedia")
    time.sleep(0.1)
    os.kill(screen, signal.SIGKILL)
    drill.ends(tuple(range(1, 256)))
    drill.check()


def escape(drill):
    drill.begin(advance=30, entries=1)
    drill.key("Escape")
    drill.ends(1, CUT_SHORT)
    drill.check(TITLES[:1])


def last_click(drill):
    """Through all slides by hand: after the last one comes a black page, which a click leaves."""
    drill.begin(advance=60, entries=1)
    for count in range(2, len(TITLES) + 1):
        drill.key("Next")
        for _ in range(8):  # builds
            if len(info(drill.folder.package)["index"]) >= count:
                break
            time.sleep(0.7)
            drill.key("Next")
        drill.wait_for_entries(count)
    deadline = time.monotonic() + 120
    while drill.recording.process.poll() is None and time.monotonic() < deadline:
        drill.act("xdotool", "click", "1", check=False)  # the last one finds no screen any more
        time.sleep(0.7)
    drill.ends(1, CUT_SHORT)
    drill.check(TITLES)


def presentation_closed(drill):
    """The document's window is closed behind the show."""
    drill.begin(advance=30, entries=1)
    close_document(drill)
    drill.ends(1, CUT_SHORT)
    drill.check(TITLES[:1])


def close_document(drill):
    windows = drill.act("xdotool", "search", "--name", "Impress").stdout.split()
    for window in windows:
        drill.act("xdotool", "windowclose", window, check=False)


def office_ends(drill):
    """The office is asked to end, as a session does that ends."""
    drill.begin(advance=30, entries=1)
    drill.recording.signal(signal.SIGTERM, "soffice.bin")
    drill.ends(1, CUT_SHORT)
    drill.check(TITLES[:1])


DRILLS = {drill.__name__: drill for drill in (
    worker_killed, recorder_killed, office_killed, all_killed, screen_killed, office_pauses, office_hangs,
    office_hangs_and_is_killed, sound_restarted, resolution_changed, disk_fills, disk_full, asleep, second_recorder,
    commands_meanwhile, logged_out, escape, last_click, presentation_closed, office_ends)}
DRILLS |= {"terminated": ended_by(signal.SIGTERM), "interrupted": ended_by(signal.SIGINT),
           "hung_up": ended_by(signal.SIGHUP)}

# These need a small disk of their own.
ON_A_SMALL_DISK = ("disk_fills", "disk_full")


def on_small_disk(name):
    """Runs the drill again in a name space where it may mount; a missing right to do so fails it."""
    rights = ["unshare", "-m"] if os.geteuid() == 0 else ["unshare", "-rm"]
    room = tempfile.mkdtemp(prefix="kestrum-disk.")
    try:
        script = f'mount -t tmpfs -o size=160m kestrum "{room}" && exec "{sys.executable}" "{__file__}" --within "{room}" {name}'
        search = os.pathsep.join(sys.path)
        subprocess.run([*rights, "bash", "-c", script], check=True, env={**os.environ, "PYTHONPATH": search})
    finally:
        os.rmdir(room)


def once(name, within=None):
    if name in ON_A_SMALL_DISK and within is None:
        return on_small_disk(name)
    drill = Round(within)
    try:
        DRILLS[name](drill)
    finally:
        drill.end()


def main(arguments):
    if arguments[:1] == ["--within"]:
        return once(arguments[2], arguments[1])
    rounds = int(arguments[0]) if arguments else 1
    names = arguments[1:] or list(DRILLS)
    unknown = [name for name in names if name not in DRILLS]
    if unknown:
        return f"no such drill: {unknown}; there are {sorted(DRILLS)}"
    failures = []
    for number in range(1, rounds + 1):
        for name in names:
            begun = time.monotonic()
            try:
                once(name)
                verdict = "ok"
            except (AssertionError, subprocess.SubprocessError) as failure:
                failures.append(name)
                verdict = f"FAILED\n{failure}"
            print(f"round {number}: {name}: {verdict} ({time.monotonic() - begun:.0f} s)", flush=True)
    return f"failed: {failures}" if failures else None


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
