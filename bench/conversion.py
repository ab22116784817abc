#!/usr/bin/python3
"""What it costs to publish an hour's lecture as MP4, beside the ffmpeg program doing the same job on the same media.

    bench/conversion.py [MINUTES [RECORDING]]    60 minutes if not said otherwise; needs some 300 MB in the temp folder

The lecture is a recording of ours of two and a half minutes, slides with speech and half a minute of a moving disc,
continued until it is long enough (repeat_lecture). `kestrum publish mp4` makes the whole page: movie, cover, index and
player; ffmpeg makes the movie alone. Both work at the same low priority, by turns, and their movies can be jumped into
while they load. Told are processor time (all processes of the job), time gone by, size, how many of the recording's
pictures are in the movie byte by byte, and likeness to the recording (SSIM of luma after scaling to the recording's size,
two pictures a second of the first five minutes).
"""
import os
import pathlib
import re
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import surroundings

SLIDES, MOTION = 120, 30  # seconds recorded of each
SPEECH = "A lecture is more than its slides. What is said about them, and when, is what a student comes back for."
WIDTH, HEIGHT = 1920, 1080
PRIORITY = 10  # what the product gives its own worker, so that it disturbs nobody
X264 = ("-c:v", "libx264", "-preset", "veryfast", "-bf", "0", "-g", "300", "-force_key_frames", "source", "-vsync",
        "passthrough", "-enc_time_base", "1:1000")
JOBS = [
    ("copied", 3, (), ("-c", "copy")),
    ("1280x720", 1, ("--size", "1280x720"), ("-vf", "scale=1280:720:flags=bicubic", *X264, "-crf", "21", "-c:a", "copy")),
    ("800 kbit/s", 1, ("--bitrate", "800"),
     (*X264, "-b:v", "800k", "-maxrate", "1600k", "-bufsize", "1600k", "-c:a", "copy")),
]


def record(file):
    """The recording that is repeated; on the private screen."""
    recorder = None
    for content, seconds in (("slides", SLIDES), ("anim", MOTION)):
        show = subprocess.Popen([surroundings.PROGRAMS / "stage_show", content, str(seconds)], stdout=subprocess.DEVNULL)
        time.sleep(1)
        recorder = recorder or surroundings.Recorder(file)
        show.wait()
    recorder.stop()


def timed(command, **more):
    """Seconds of processor time and seconds gone by."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    began = time.monotonic()
    subprocess.run(list(map(str, command)), check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, **more)
    gone = time.monotonic() - began
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, gone


def publish(lecture, options, folder):
    """By the product; its movie and what it cost."""
    page = lecture.with_name(lecture.name + ".mp4")
    shutil.rmtree(page, ignore_errors=True)
    own = {name: str(folder / "home") for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME")}
    cost = timed([surroundings.INSTALL / "kestrum", "publish", "mp4", lecture, *options], env={**os.environ, **own})
    return page / "media.mp4", cost


def convert(lecture, options, folder):
    """By ffmpeg; the same."""
    movie = folder / "peer.mp4"
    cost = timed(["nice", "-n", PRIORITY, "ffmpeg", "-v", "error", "-y", "-i", lecture, "-map", "0:v:0", "-map", "0:a:0",
                  "-map_chapters", "0", *options, "-movflags", "+faststart", movie])
    return movie, cost


def pictures(file):
    """A mark of each picture as it is encoded."""
    told = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v:0", "-show_packets", "-show_data_hash", "crc32",
                           "-show_entries", "packet=data_hash", "-of", "csv=p=0", file], capture_output=True, text=True,
                          check=True)
    return told.stdout.split()


def likeness(movie, lecture):
    sampled = "fps=2,format=gray"
    told = subprocess.run(
        ["nice", "ffmpeg", "-v", "info", "-t", "300", "-i", movie, "-t", "300", "-i", lecture, "-lavfi",
         f"[0:v]scale={WIDTH}:{HEIGHT}:flags=bicubic,{sampled}[a];[1:v]{sampled}[b];[a][b]ssim", "-f", "null", "-"],
        capture_output=True, text=True, check=True).stderr
    return float(re.search(r"SSIM Y:([0-9.]+)", told).group(1))


def measure(name, runs, own_options, peer_options, lecture, folder):
    costs = {"Kestrum": [], "ffmpeg": []}
    movies = {}
    for _ in range(runs):
        for who, way, options in (("Kestrum", publish, own_options), ("ffmpeg", convert, peer_options)):
            movies[who], cost = way(lecture, options, folder)
            costs[who].append(cost)
    recorded = pictures(lecture)
    middle = {who: [statistics.median(one) for one in zip(*rows)] for who, rows in costs.items()}
    for who, (cpu, gone) in middle.items():
        same = len(set(pictures(movies[who])) & set(recorded)) / len(set(recorded))
        ratio = "" if who == "Kestrum" else f"{cpu / middle['Kestrum'][0]:8.2f}{gone / middle['Kestrum'][1]:8.2f}"
        print(f"{name:12}{who:10}{cpu:9.2f}{gone:9.2f}{movies[who].stat().st_size / 1e6:9.1f}{same:9.0%}"
              f"{likeness(movies[who], lecture):9.4f}{ratio}", flush=True)


def run(minutes, folder, recording=None):
    short, lecture = pathlib.Path(recording or folder / "short.ktr"), folder / "lecture.ktr"
    if not recording:
        record(short)
    subprocess.run([surroundings.PROGRAMS / "repeat_lecture", short, lecture, str(minutes),
                    surroundings.INSTALL / "default.ksp"], check=True)
    print(f"a lecture of {minutes} minutes, {lecture.stat().st_size / 1e6:.1f} MB")
    print(f"{'':22}" + "".join(f"{title:>9}" for title in ("CPU s", "wall s", "MB", "copied", "SSIM")) +
          "   times the CPU and wall of Kestrum", flush=True)
    for job in JOBS:
        measure(*job, lecture, folder)


def main(arguments):
    if arguments[:1] == ["--inside"]:
        return run(int(arguments[1]), pathlib.Path(arguments[2]), *arguments[3:])
    surroundings.build("stage_show", "record_bench", "repeat_lecture", "kestrum", "ksmedia",
                       "mp4GetKeyFrame", "install_files")
    with tempfile.TemporaryDirectory() as name:
        speech = pathlib.Path(name) / "speech.txt"
        speech.write_text(SPEECH)
        return surroundings.run_inside(__file__, [arguments[0] if arguments else 60, name, *arguments[1:]],
                                       ("--desktop", "", "--speech", speech))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
