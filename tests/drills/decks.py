"""Records every deck of a folder unattended, two seconds a slide; each slide that has a title must get it."""
import csv
import json
import pathlib
import shutil
import sys
import tempfile

from stage import KESTRUM, info, last_path, on_stage, run


def titles_of(folder):
    """Deck name to the titles by slide number, from titles.tsv (deck, slide, title)."""
    table = {}
    source = folder / "titles.tsv"
    if source.exists():
        with open(source, encoding="utf-8", newline="") as lines:
            for row in list(csv.reader(lines, delimiter="\t", quoting=csv.QUOTE_NONE))[1:]:
                table.setdefault(row[0], {})[int(row[1])] = row[2]
    return table


def plain(title):
    """For comparing: blanks folded, vertical tabs too."""
    return "".join(title.split())


def drill(deck, titles):
    room = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-decks."))
    try:
        copy = room / deck.name
        shutil.copy(deck, copy)
        record = on_stage(KESTRUM, "record", copy, "--advance", "2", timeout=3600)
        package = last_path(record.stdout, "package")
        found = info(package)
        assert all(entry["key_frame"] for entry in found["index"]), found["index"]
        problems = []
        for number, title in sorted(titles.items()):
            got = found["index"][number - 1]["title"] if number <= len(found["index"]) else "(no entry)"
            if title and plain(got) != plain(title):
                problems.append(f"slide {number}: \"{got}\" instead of \"{title}\"")
        page = last_path(run(KESTRUM, "publish", "mp4", package, timeout=3600).stdout, "page")
        expected = room / "expected.json"
        expected.write_text(json.dumps({"title": found["title"], "author": found["author"],
                                        "entries": [entry["title"] for entry in found["index"]]}))
        player = pathlib.Path(__file__).parent.parent / "e2e" / "player.mjs"
        run("node", player, page, expected, room, timeout=3600)
        print(f"{deck.name}: {len(found['index'])} entries, {found['duration_ms']} ms", *problems, sep="\n  ", flush=True)
        return not problems
    finally:
        shutil.rmtree(room, ignore_errors=True)


def main():
    folder = pathlib.Path(sys.argv[1])
    titles = titles_of(folder)
    decks = sorted(path for path in folder.iterdir() if path.suffix in (".pptx", ".ppt", ".odp", ".ppsx", ".pptm"))
    results = [drill(deck, titles.get(deck.name, {})) for deck in decks]
    sys.exit(0 if all(results) else 1)


main()
