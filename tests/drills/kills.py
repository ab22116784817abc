"""Kills recorder, worker and office at random moments of a recording; every package must come back with its entries."""
import random
import sys
import time

from lecture_test import TITLES
from stage import KESTRUM, Folder, Recording, complaints, info, run


def round_of(victim, moment):
    folder = Folder("drill 演习", "lecture.pptx")
    recording = Recording(folder.deck, 1.5)
    try:
        recording.wait_for_entries(folder.package, 1)
        time.sleep(moment)
        seen = info(folder.package)["index"]
        recording.kill(victim)
        recording.wait()
        run(KESTRUM, "publish", "mp4", folder.package)
        found = info(folder.package)
        assert found["index"][:len(seen)] == seen, (seen, found["index"])
        titles = [entry["title"] for entry in found["index"]]
        expected = TITLES[:len(titles)]
        if victim == "soffice.bin" and titles[-1:] == [f"Slide {len(titles)}"]:
            expected[-1] = titles[-1]  # it died between a slide's coming and the reading of its title
        assert titles == expected, found["index"]
        assert all(entry["key_frame"] for entry in found["index"]), found
        assert complaints(folder.package) == ""
        return len(found["index"]), found["duration_ms"]
    finally:
        recording.end()
        folder.remove()


def main():
    rounds = int(sys.argv[1])
    for number in range(rounds):
        for victim in ("ksmedia", "kestrum", "soffice.bin"):
            moment = random.uniform(0, 8)
            entries, length = round_of(victim, moment)
            print(f"round {number + 1}: {victim} killed {moment:.2f} s after the first entry: "
                  f"{entries} entries, {length} ms kept", flush=True)


main()
