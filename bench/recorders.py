#!/usr/bin/env python3
"""Kestrum's recorder beside ffmpeg and SimpleScreenRecorder, on the same screen, sound and contents, one after the other.

    bench/recorders.py [SECONDS [CONTENT...]]     20 seconds each of slides, anim and video if not said otherwise

Told for each: processor time for a second of media (of the recorder, and what the X server and the sound server need
more than without a recorder), memory, bytes a minute of video, pictures delivered of those shown, likeness (SSIM
of luma, mean of some pictures; their numbers are in them, so that like is compared with like), and what is left of the
show beside it: the share of its pictures that it could show, and how late they were (median, ms). All record 1920x1080 with
H.264 and stereo AAC of 96 kbit/s; a last row has the sound that the product records if nothing else is said.

Needs simplescreenrecorder and ffmpeg; builds the rest.
"""
import os
import pathlib
import re
import signal
import statistics
import subprocess
import sys
import tempfile
import time

import surroundings

SPEECH = "A lecture is more than its slides. What is said about them, and when, is what a student comes back for."
SETTLE = 4  # seconds until every recorder runs as it will go on
SPARE = 10  # seconds that the show outlasts a recorder that starts slowly; it is ended with the recorder
NUMBER = "crop=224:16:1440:16,scale=14:1:flags=area,format=gray"
SSR_SETTINGS = """[welcome]
skip_page=true
[input]
video_area=screen
video_w=1920
video_h=1080
video_frame_rate={rate}
video_record_cursor=true
audio_enabled=true
audio_backend=pulseaudio
audio_pulseaudio_source=mic
[output]
file={file}
separate_files=false
add_timestamp=false
container=mkv
container_av=matroska
video_codec=h264
video_h264_crf=21
video_h264_preset=2
video_allow_frame_skipping=true
audio_codec=aac
audio_kbit_rate=96
"""


def cpu(pid):
    """Seconds of processor time of a process, 0 if it is gone."""
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    except OSError:
        return 0
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def peak_memory(pid):
    """Megabytes that a process held at most."""
    match = re.search(r"VmHWM:\s+(\d+) kB", pathlib.Path(f"/proc/{pid}/status").read_text())
    return int(match.group(1)) / 1024


def sibling(name):
    """The screen's or the sound's server: started by the same script as this program."""
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            text = stat.read_text()
        except OSError:
            continue
        if f"({name})" in text and int(text.rsplit(")", 1)[1].split()[1]) == os.getppid():
            return int(stat.parent.name)
    raise SystemExit(f"{name} does not run")


class Kestrum:
    name = "Kestrum"
    suffix = ".ktr"

    def __init__(self, kbps=96, layout="stereo", name=name):
        self.kbps, self.layout, self.name = kbps, layout, name

    def start(self, file, rate, _folder):
        self.recorder = surroundings.Recorder(file, rate, self.kbps, self.layout)
        self.process = self.recorder.process

    def stop(self):
        self.recorder.stop()


class Ffmpeg:
    name = "ffmpeg veryfast"
    suffix = ".mkv"

    def start(self, file, rate, _folder):
        self.process = subprocess.Popen(
            ["ffmpeg", "-v", "error", "-y", "-thread_queue_size", "512", "-f", "x11grab", "-framerate", str(rate), "-video_size",
             "1920x1080", "-i", os.environ["DISPLAY"], "-thread_queue_size", "512", "-f", "pulse", "-i", "mic", "-c:v", "libx264",
             "-preset", "veryfast", "-crf", "21", "-pix_fmt", "yuv420p", "-c:a", "aac", "-b:a", "96k", "-ac", "2", file],
            stdin=subprocess.DEVNULL)

    def stop(self):
        self.process.send_signal(signal.SIGINT)
        self.process.wait(120)


class SimpleScreenRecorder:
    name = "SimpleScreenRecorder"
    suffix = ".mkv"

    def start(self, file, rate, folder):
        settings = folder / "ssr.conf"
        settings.write_text(SSR_SETTINGS.format(rate=rate, file=file))
        self.process = subprocess.Popen(
            ["simplescreenrecorder", f"--settingsfile={settings}", "--start-recording", "--start-hidden", "--no-systray"],
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "HOME": str(folder)}, text=True)

    def stop(self):
        self.process.communicate("record-save\nquit\n", timeout=120)


def measure(recorder, content, rate, seconds, folder):
    """What it costs to record the content; without a recorder what the servers need anyway."""
    servers = [sibling("Xvfb"), sibling("pulseaudio")]
    told = folder / "shown.txt"
    with told.open("w") as out:
        show = subprocess.Popen([surroundings.PROGRAMS / "stage_show", content, str(seconds + SETTLE + SPARE)], stdout=out)
    time.sleep(1)
    file = folder / f"recording{recorder.suffix if recorder else ''}"
    file.unlink(missing_ok=True)
    if recorder:
        recorder.start(str(file), rate, folder)
    time.sleep(SETTLE)
    watched = [recorder.process.pid] if recorder else []
    before = [cpu(pid) for pid in watched + servers]
    began = time.monotonic()
    time.sleep(seconds)
    ended = time.monotonic()
    cost = [(cpu(pid) - at) / (ended - began) for pid, at in zip(watched + servers, before)]
    memory = peak_memory(recorder.process.pid) if recorder else 0
    if recorder:
        recorder.stop()
    show.terminate()
    show.wait()
    rows = [tuple(map(int, line.split())) for line in told.read_text().splitlines() if line.count(" ") == 2]
    return {"cost": cost, "memory": memory, "file": file, "shown": {number for number, _, _ in rows},
            "show": [(number, late / 1000) for number, at, late in rows if began <= at / 1e9 <= ended]}


def video_bytes_a_minute(file):
    """Of the pictures; the sound is the same for all."""
    packets = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time,size", "-of",
                              "csv=p=0", file], capture_output=True, text=True, check=True).stdout.split()
    rows = [(float(row.split(",")[0]), int(row.split(",")[1])) for row in packets if row.split(",")[0] != "N/A"]
    length = max(at for at, _ in rows) - min(at for at, _ in rows)
    return 60 * sum(size for _, size in rows) / max(length, 1)


def numbers(file):
    """The number in each picture of a recording."""
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", file, "-vf", NUMBER, "-vsync", "passthrough", "-f", "rawvideo", "-"],
                         capture_output=True, check=True).stdout
    return [int("".join("1" if value > 127 else "0" for value in raw[at:at + 14]), 2) for at in range(0, len(raw), 14)]


def likeness(file, content, seen, folder, count=6):
    """SSIM of some pictures, each compared with how it was drawn."""
    later = [at for at in range(len(seen)) if at > len(seen) / 4]
    chosen = later[::max(1, len(later) // count)][:count]
    pattern = folder / "picture%d.png"
    choice = "+".join(f"eq(n\\,{at})" for at in chosen)
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", file, "-vf", f"select='{choice}'", "-vsync", "passthrough", pattern],
                   check=True)
    sums = []
    for place, at in enumerate(chosen):
        drawn = folder / "drawn.ppm"
        show = [surroundings.PROGRAMS / "stage_show", content, "--picture", str(seen[at])]
        drawn.write_bytes(subprocess.run(show, capture_output=True, check=True).stdout)
        told = subprocess.run(["ffmpeg", "-v", "info", "-i", folder / f"picture{place + 1}.png", "-i", drawn, "-lavfi",
                               "[0]format=gray[a];[1]format=gray[b];[a][b]ssim", "-f", "null", "-"], capture_output=True,
                              text=True, check=True).stderr
        sums.append(float(re.search(r"Y:([0-9.]+)", told).group(1)))
    return sum(sums) / len(sums)


def delivered(content, seen, shown, rate):
    """Share of the shown pictures that were there to be taken."""
    if content == "slides":
        return None
    later = set(seen[len(seen) // 4:])
    there = [number for number in shown if min(later) <= number <= max(later)]
    return len(later) / (len(there) * min(rate, 30) / 30)


def smoothness(content, show):
    """Share of its pictures that the show could show, and how late they were in the middle (ms)."""
    if content == "slides" or not show:
        return f"{'-':>8}{'-':>7}"
    numbers_shown = [number for number, _ in show]
    share = len(numbers_shown) / (numbers_shown[-1] - numbers_shown[0] + 1)
    return f"{share:8.0%}{statistics.median(late for _, late in show):7.1f}"


def run(seconds, contents):
    recorders = [Kestrum(), Ffmpeg(), SimpleScreenRecorder(), Kestrum(32, "mono", "Kestrum, default sound")]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for content in contents:
            alone = measure(None, content, 0, seconds, folder)
            idle = alone["cost"]
            for rate in (10, 30):
                own = None
                print(f"\n{content}, {rate} pictures a second", flush=True)
                print(f"{'':24}{'CPU':>7}{'times':>7}{'MB':>6}{'kB/min':>9}{'delivered':>11}{'SSIM':>9}"
                      f"{'shown':>8}{'late':>7}")
                print(f"{'no recorder':24}{'':49}{smoothness(content, alone['show'])}", flush=True)
                for recorder in recorders:
                    got = measure(recorder, content, rate, seconds, folder)
                    cost = got["cost"][0] + sum(max(0, with_ - without) for with_, without in zip(got["cost"][1:], idle))
                    own = own or cost
                    seen = numbers(got["file"])
                    share = delivered(content, seen, got["shown"], rate)
                    print(f"{recorder.name:24}{cost:7.3f}{cost / own:7.1f}{got['memory']:6.0f}"
                          f"{video_bytes_a_minute(got['file']) / 1000:9.0f}{'-' if share is None else f'{share:.0%}':>11}"
                          f"{likeness(got['file'], content, seen, folder):9.4f}{smoothness(content, got['show'])}", flush=True)


def main(arguments):
    if arguments[:1] == ["--inside"]:
        return run(float(arguments[1]), arguments[2:])
    surroundings.build("stage_show", "record_bench")
    seconds, contents = arguments[:1] or ["20"], arguments[1:] or ["slides", "anim", "video"]
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as speech:
        speech.write(SPEECH)
        speech.flush()
        return surroundings.run_inside(__file__, [*seconds, *contents], ("--desktop", "", "--speech", speech.name))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
