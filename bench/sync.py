#!/usr/bin/python3
"""How far are picture and sound apart in a recording? A window flashes and a chirp sounds at the same moment, again and
again, on a private screen and sound server, while Kestrum records; the file is decoded and compared with what happened.

    bench/sync.py [EVENTS [WAY...]]        60 events of each way if not said otherwise

    card     the chirp comes out of a microphone that runs like a sound card of its own: samples come in step with the
             clock, and each is heard at its place in that step
    system   the chirp is played, and the computer's own sound is recorded
    mic      the chirp is played into a bus of which a virtual microphone hears the end, as the tests have it

Each way is recorded at 10 and at 30 pictures a second. When an event happened is not what the program wished: the flash
happened within the round trip to the X server (events with one above 2 ms are left out), and a played chirp when its first
sample leaves the sink by the sound server's own account. Told, in ms: how much later than the flash its picture lies in the
file, how much later than the chirp its sound lies there (to half a millisecond), and how much later the picture lies than
the sound; of each the median, the middle 90 % and the one that is worst.

Needs python3-numpy; uses the sound server's and the X server's client libraries.
"""
import ctypes
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import threading
import time

import numpy

import surroundings

RATE = 48000
WIDTH, HEIGHT = 640, 480  # of the window that flashes
LIT, APART = 0.3, (0.85, 1.25)  # seconds that a flash stands, and from one to the next
LONGEST_ROUND_TRIP_NS = 2_000_000
SECOND = 1_000_000_000


def chirp():
    """40 ms from 500 Hz to 4 kHz: its place is found to a fraction of a millisecond, whatever the codec does to it."""
    at = numpy.arange(RATE // 25) / RATE
    sound = 0.4 * numpy.sin(2 * numpy.pi * (500 * at + 0.5 * 3500 / 0.04 * at ** 2))
    return sound * numpy.minimum(1, numpy.minimum(at, at[::-1]) / 0.002)


CHIRP = (chirp() * 32767).astype("<i2")


class Window:
    """A black window that can be lit."""

    def __init__(self):
        self._x = ctypes.CDLL("libX11.so.6")
        for name in ("XOpenDisplay", "XDefaultGC"):
            getattr(self._x, name).restype = ctypes.c_void_p
        for name in ("XDefaultRootWindow", "XCreateSimpleWindow"):
            getattr(self._x, name).restype = ctypes.c_ulong
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(None))
        self._gc = ctypes.c_void_p(self._x.XDefaultGC(self._display, 0))
        root = ctypes.c_ulong(self._x.XDefaultRootWindow(self._display))
        black = no_border = ctypes.c_ulong(0)
        self._window = ctypes.c_ulong(self._x.XCreateSimpleWindow(self._display, root, 0, 0, WIDTH, HEIGHT, 0, no_border, black))
        self._x.XMapRaised(self._display, self._window)
        self._x.XSync(self._display, 0)

    def fill(self, colour):
        """Paints; the moments before and after the X server did it."""
        self._x.XSetForeground(self._display, self._gc, ctypes.c_ulong(colour))
        self._x.XSync(self._display, 0)
        before = time.monotonic_ns()
        self._x.XFillRectangle(self._display, self._window, self._gc, 0, 0, WIDTH, HEIGHT)
        self._x.XSync(self._display, 0)
        return before, time.monotonic_ns()


class Chirper:
    """Gives out silence and, where asked for, chirps, in blocks of a few ms from a thread of its own."""

    block = 96

    def __init__(self):
        self._lock = threading.Lock()
        self._wanted = None
        self._samples = 0
        self._rest = numpy.zeros(0, "<i2")
        self._stop = False
        self.heard = []  # number of the first sample of each chirp
        self._thread = threading.Thread(target=self._run)
        self._thread.start()

    def at(self, ns):
        """Asks for a chirp at about this moment."""
        with self._lock:
            self._wanted = ns

    def close(self):
        self._stop = True
        self._thread.join()

    def _next(self):
        """The block behind those given out, and whether a chirp begins with it."""
        with self._lock:
            if self._wanted is not None and self.moment(self._samples) >= self._wanted:
                self._wanted = None
                self._rest = CHIRP
                self.heard.append(self._samples)
        block = numpy.zeros(self.block, "<i2")
        part = self._rest[:self.block]
        block[:len(part)] = part
        self._rest = self._rest[self.block:]
        self._samples += self.block
        return block.tobytes()


class Card(Chirper):
    """A source that hears in step with the clock: the sound server reads the samples of 2 ms once these are over."""

    def __init__(self, folder):
        self._fifo = folder / "card"
        subprocess.run(["pactl", "load-module", "module-pipe-source", "source_name=card", f"file={self._fifo}", "format=s16le",
                        f"rate={RATE}", "channels=1"], check=True, stdout=subprocess.DEVNULL)
        self._listener = subprocess.Popen(["parec", "-d", "card"], stdout=subprocess.DEVNULL)  # keeps the source at work
        time.sleep(1)
        self._begin = time.monotonic_ns()
        super().__init__()

    def moment(self, sample):
        return self._begin + sample * SECOND // RATE

    def _run(self):
        with open(self._fifo, "wb", buffering=0) as fifo:
            while not self._stop:
                block = self._next()
                time.sleep(max(0, self.moment(self._samples) - time.monotonic_ns()) / SECOND)
                fifo.write(block)

    def close(self):
        super().close()
        self._listener.terminate()
        self._listener.wait()


class SampleSpec(ctypes.Structure):
    _fields_ = [("format", ctypes.c_int), ("rate", ctypes.c_uint32), ("channels", ctypes.c_uint8)]


class BufferAttributes(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in ("maxlength", "tlength", "prebuf", "minreq", "fragsize")]


class Player(Chirper):
    """Plays into a sink. When a sample leaves it is what the sound server says, again at each block: the middle of what it
    says in the second around it."""

    block = RATE // 100

    def __init__(self, sink):
        self._pulse = ctypes.CDLL("libpulse-simple.so.0")
        self._pulse.pa_simple_new.restype = ctypes.c_void_p
        self._pulse.pa_simple_new.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_int, ctypes.c_char_p, ctypes.c_char_p,
                                              ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p]
        self._pulse.pa_simple_get_latency.restype = ctypes.c_uint64
        spec, unset = SampleSpec(3, RATE, 1), 0xFFFFFFFF
        buffer = BufferAttributes(unset, RATE // 10 * 2, unset, unset, unset)
        stream = self._pulse.pa_simple_new(None, b"Chirper", 1, sink.encode(), b"chirps", ctypes.addressof(spec), None,
                                           ctypes.addressof(buffer), None)
        if not stream:
            raise SystemExit("the sound server did not take the player")
        self._stream = ctypes.c_void_p(stream)
        self._firsts = [time.monotonic_ns()]  # where sample 0 lies, as told at each block
        super().__init__()

    def moment(self, sample):
        number = sample // self.block
        half = RATE // self.block // 2
        near = self._firsts[max(0, number - half):number + half] or self._firsts[-half:]
        return int(numpy.median(near)) + sample * SECOND // RATE

    def _run(self):
        while not self._stop:
            block = self._next()
            self._pulse.pa_simple_write(self._stream, block, ctypes.c_size_t(len(block)), None)
            later = self._pulse.pa_simple_get_latency(self._stream, None) * 1000
            self._firsts.append(time.monotonic_ns() + later - self._samples * SECOND // RATE)
        self._pulse.pa_simple_free(self._stream)


def happen(window, chirper, events):
    """The events as they were: moments of flash and chirp, and how long the X server's round trip was."""
    flashes = []
    for _ in range(events):
        due = time.monotonic_ns() + int(random.uniform(*APART) * SECOND)
        chirper.at(due)
        time.sleep((due - time.monotonic_ns()) / SECOND)
        flashes.append(window.fill(0xFFFFFF))
        time.sleep(LIT)
        window.fill(0)
    time.sleep(1)
    chirps = [chirper.moment(sample) for sample in chirper.heard]
    return [((before + after) // 2, after - before, sound) for (before, after), sound in zip(flashes, chirps)]


def flashes_in(file):
    """Where the recorded picture turns white, ms."""
    stamps = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries", "packet=pts_time", "-of",
                             "csv=p=0", file], capture_output=True, text=True, check=True).stdout.split()
    lit = subprocess.run(["ffmpeg", "-v", "error", "-i", file, "-map", "0:v:0", "-vf", "crop=16:16:64:64,format=gray,scale=1:1",
                          "-vsync", "passthrough", "-f", "rawvideo", "-"], capture_output=True, check=True).stdout
    assert len(lit) == len(stamps), "every picture can be decoded"
    pictures = [(1000 * float(stamp.strip(",")), light > 127) for stamp, light in zip(stamps, lit)]
    return [at for (at, now), (_, before) in zip(pictures[1:], pictures) if now and not before]


def chirps_in(file):
    """Where the recorded sound is likest to the chirp, ms, once in each half second that has one."""
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", file, "-map", "0:a:0", "-ac", "1", "-ar", str(RATE), "-f", "s16le", "-"],
                         capture_output=True, check=True).stdout
    sound = numpy.frombuffer(raw, "<i2").astype(float)
    size = 1 << (len(sound) + len(CHIRP)).bit_length()
    match = numpy.fft.irfft(numpy.fft.rfft(sound, size) * numpy.conj(numpy.fft.rfft(CHIRP.astype(float), size)), size)
    match = match[:len(sound)]
    found = []
    while True:
        at = int(match.argmax())
        if match[at] < 0.3 * (CHIRP.astype(float) ** 2).sum():
            return sorted(found)
        found.append(1000 * at / RATE)
        match[max(0, at - RATE // 2):at + RATE // 2] = 0


def nearest(places, wanted):
    """The place next to the wanted one, relative to it; none if that is further than 300 ms."""
    off = min((place - wanted for place in places), key=abs, default=None)
    return off if off is not None and abs(off) < 300 else None


def describe(values):
    low, high = numpy.percentile(values, [5, 95])
    return f"{numpy.median(values):7.1f} ({low:5.1f} to {high:5.1f}) {max(values, key=abs):7.1f}"


def measure(way, rate, events, folder):
    file = folder / f"{way}{rate}.ktr"
    chirper = Card(folder) if way == "card" else Player({"system": "speaker", "mic": "micbus"}[way])
    try:
        window = Window()
        recorder = surroundings.Recorder(file, rate, source={"system": "speaker.monitor"}.get(way, way))
        time.sleep(2)
        happened = happen(window, chirper, events)
        recorder.stop()
    finally:
        chirper.close()
    if way == "card":
        subprocess.run(["pactl", "unload-module", "module-pipe-source"], check=True)
    flashes, chirps = flashes_in(file), chirps_in(file)
    rows = []
    for flash, round_trip, sound in happened:
        picture_off = nearest(flashes, (flash - recorder.start_ns) / 1e6)
        sound_off = nearest(chirps, (sound - recorder.start_ns) / 1e6)
        if round_trip > LONGEST_ROUND_TRIP_NS:
            continue
        if picture_off is None or sound_off is None:
            print(f"an event at {(flash - recorder.start_ns) / 1e9:.2f} s is missing: picture {picture_off}, sound {sound_off}")
            continue
        rows.append((picture_off, sound_off, picture_off - sound_off))
    print(f"{way:8}{rate:5}{len(rows):8}   " + "   ".join(describe(column) for column in zip(*rows)), flush=True)


def run(events, ways, folder):
    sys.setswitchinterval(0.0005)
    print(f"{'':8}{'rate':>5}{'events':>8}   " + "   ".join(f"{name:>29}" for name in ("picture", "sound", "picture after sound")))
    for way in ways:
        for rate in (10, 30):
            measure(way, rate, events, folder)
    print("load of the machine: %.1f %.1f" % os.getloadavg()[:2])


def main(arguments):
    if arguments[:1] == ["--inside"]:
        return run(int(arguments[2]), arguments[3:], pathlib.Path(arguments[1]))
    surroundings.build("record_bench")
    with tempfile.TemporaryDirectory() as name:
        events, ways = arguments[:1] or [60], arguments[1:] or ["card", "system", "mic"]
        return surroundings.run_inside(__file__, [name, *events, *ways])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
