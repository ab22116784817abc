"""What the measurements in Python share: where the built programs lie, and a private screen and sound server around them.

The programs are built first; with KESTRUM_BUILT in the environment (a build folder that has "bench" and "install" in it)
those found there are taken as they are.
"""
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
_GIVEN = os.environ.get("KESTRUM_BUILT")
BUILT = pathlib.Path(_GIVEN) if _GIVEN else ROOT / "build" / "release"
PROGRAMS = BUILT / "bench"
INSTALL = BUILT / "install"


def build(*targets):
    """Builds in the release preset, unless a folder of built programs was given."""
    if _GIVEN:
        return
    subprocess.run(["cmake", "--preset", "release"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", BUILT, "--target", *targets], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)


def run_inside(script, arguments, options=("--desktop", "")):
    """Runs the script again, as `script --inside ARGUMENTS`, on a screen and a sound server of its own."""
    return subprocess.run([ROOT / "tools" / "private-screen", *options, sys.executable, script, "--inside",
                           *map(str, arguments)]).returncode


class Recorder:
    """The product's recorder on the whole screen and a source of sound; `file` grows until the end. `start_ns` is the
    moment of the monotonic clock that is position 0 in the file, to half a millisecond."""

    def __init__(self, file, rate=10, kbps=32, layout="mono", source="mic"):
        self.process = subprocess.Popen([PROGRAMS / "record_bench", file, str(rate), str(kbps), layout, source],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        told = self.process.stdout.readline().split()
        if told[:1] != ["recording"]:
            raise SystemExit("the recorder did not start")
        self.start_ns = int(told[1])

    def stop(self):
        self.process.stdin.close()
        if self.process.wait(60) != 0:
            raise SystemExit("the recorder failed")
