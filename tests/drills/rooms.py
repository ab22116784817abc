"""Folders that cannot take a recording: read-only, nearly full. Each is a small file system mounted in a name space of
its own, so the drill needs the right to mount."""
import re
import subprocess

from stage import KESTRUM, ROOT

CASES = {
    "read-only": ("size=400m", "mount -o remount,ro \"$room\"", r"(?i)cannot be written"),
    "nearly full": ("size=60m", ":", r"(?i)space"),
}


def drill(name, options, prepare, pattern):
    script = f"""
        set -e
        room=$(mktemp -d); mount -t tmpfs -o {options} kestrum "$room"
        cp "{ROOT}/samples/lecture.pptx" "$room/"; {prepare}
        ls -A "$room" > /tmp/kestrum-before.$$
        status=0; "{ROOT}/tools/private-screen" "{KESTRUM}" record "$room/lecture.pptx" --advance 1 || status=$?
        ls -A "$room" | diff /tmp/kestrum-before.$$ - && [ $status -ne 0 ]
    """
    result = subprocess.run(["unshare", "-m", "bash", "-c", script], capture_output=True, text=True, timeout=600)
    sentence = (result.stderr.strip().split("\n") or [""])[-1]
    assert result.returncode == 0, f"{name}: {result.stdout}\n{result.stderr}"
    assert re.search(pattern, sentence), f"{name}: {sentence}"
    print(f"{name}: {sentence}", flush=True)


for case, (mount_options, preparation, expected) in CASES.items():
    drill(case, mount_options, preparation, expected)
