"""A person at an Impress of their own: hands on keyboard and mouse, eyes on the screen. Nothing here knows how the menu
reaches the recorder."""
import json
import pathlib
import re
import shutil
import time

import stage
from stage import INSTALL, KESTRUM, ROOT, run

# What somebody has already said good-bye to who has worked with an office before; all else is as it comes.
SEEN_BEFORE = {("Office.Common/Misc", "ShowTipOfTheDay"): "false", ("Office.Common/Misc", "FirstRun"): "false",
               ("Setup/Product", "ooSetupLastVersion"): "7.4"}


# Of a window that fills the screen, in pixels: the words of the menu bar, and the middle of a menu's first entry.
BAR_TOP, BAR_HEIGHT = 24, 10
FIRST_ENTRY = 48


def write_profile(folder):
    """A profile of the office as its user has it after the first day."""
    (folder / "user").mkdir(parents=True)
    items = "".join(f'<item oor:path="/org.openoffice.{path}"><prop oor:name="{name}" oor:op="fuse"><value>{value}'
                    "</value></prop></item>" for (path, name), value in SEEN_BEFORE.items())
    (folder / "user" / "registrymodifications.xcu").write_text(
        '<?xml version="1.0" encoding="UTF-8"?><oor:items xmlns:oor="http://openoffice.org/2001/registry" '
        'xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">'
        f"{items}</oor:items>", encoding="utf-8")


def changed_area(before, after, area):
    """Bounding box of what differs between two pictures within an area (width, height, x, y); None if nothing does."""
    width, height, x, y = area
    crop = f"{width}x{height}+{x}+{y}"
    box = run("convert", "(", before, "-crop", crop, "+repage", ")", "(", after, "-crop", crop, "+repage", ")",
              "-compose", "difference", "-composite", "-threshold", "4%", "-format", "%@", "info:").stdout
    w, h, left, top = (int(number) for number in re.match(r"(\d+)x(\d+)([+-]\d+)([+-]\d+)", box).groups())
    return (w, h, x + left, y + top) if w < width or h < height else None


class Person:
    """With a deck of their own on a screen of their own."""

    def __init__(self, *monitors, pictures=None, **settings):
        self.desk = stage.Desk(*monitors, size="1280x720", **settings)
        self.folder = stage.Folder("my lectures", "lecture.pptx")
        self.pictures = pathlib.Path(pictures or self.folder.root / "pictures")
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.profile = self.folder.root / "profile"
        write_profile(self.profile)
        self.shots = 0

    def go_home(self):
        self.desk.end()
        self.folder.remove()

    def see(self, name):
        """A picture of the screen, kept in order."""
        self.shots += 1
        picture = self.pictures / f"{self.shots:02d}-{name}.png"
        self.desk.picture(picture)
        return picture

    def open(self, *decks):
        """What the file manager's command does."""
        # The menu of an installed package is where every office looks.
        menu = [f"-env:BUNDLED_EXTENSIONS=file://{INSTALL}/impress"] if (INSTALL / "impress").is_dir() else []
        self.office = self.desk.start("soffice", f"-env:UserInstallation=file://{self.profile}", *menu, "--impress",
                                      *decks)
        for deck in decks:
            self.desk.wait_for(f"the window of {deck.name}", lambda name=deck.name: self.windows(f"^{name}"))
        self.turn_to(decks[-1])

    def windows(self, title):
        return self.desk.run("xdotool", "search", "--onlyvisible", "--name", title, check=False).stdout.split()

    def turn_to(self, deck):
        """The window of a deck to the front, its menu bar painted."""
        window = self.windows(f"^{deck.name}")[0]
        def in_front():
            self.desk.run("xdotool", "windowactivate", window, check=False)
            time.sleep(0.5)
            return self.desk.run("xdotool", "getactivewindow", check=False).stdout.strip() == window
        self.desk.wait_for(f"{deck.name} in front", in_front)
        time.sleep(2)

    def press(self, *keys):
        self.desk.press(*keys)

    def click(self, x, y):
        self.desk.run("xdotool", "mousemove", str(x), str(y), "click", "1")

    def screen(self):
        width, height = self.desk.run("xdotool", "getdisplaygeometry").stdout.split()
        return int(width), int(height)

    def open_menu(self):
        """Clicks Kestrum in the menu bar; gives the left edge of the list that opens below it. The keyboard shows first
        where the word is."""
        width, _ = self.screen()
        plain = self.see("before-menu")
        title = None
        while not title:  # the keys go nowhere until the window has them
            self.press("alt+k")
            time.sleep(1)
            title = changed_area(plain, self.see("menu-by-key"), (width, BAR_HEIGHT, 0, BAR_TOP))
        self.press("Escape", "Escape")
        self.click(title[2] + title[0] // 2, BAR_TOP + BAR_HEIGHT // 2)
        time.sleep(1)
        self.see("menu")
        return title[2]

    def pick_first(self):
        """Clicks on the first entry of the menu, Record."""
        self.click(self.open_menu() + 50, FIRST_ENTRY)

    def pick(self, *downs):
        """An entry of the menu by its place among the entries; of a list within by its place there."""
        self.open_menu()
        keys = []
        for number, down in enumerate(downs):
            # The first list opens without a mark, an inner one with its first entry marked.
            keys += ["Right"] * (number > 0) + ["Down"] * (down if number == 0 else down - 1)
        self.press(*keys)
        self.see("entry")
        self.press("Return")

    def wait_for_window(self, title):
        try:
            self.desk.wait_for(f"the window {title}", lambda: self.windows(title))
            time.sleep(1)
        finally:
            self.see("window")

    def answer(self, title, *keys):
        """Presses keys for the window of a title."""
        self.wait_for_window(title)
        window = self.windows(title)[-1]
        self.desk.run("xdotool", "windowactivate", "--sync", window, check=False)
        time.sleep(0.5)
        self.press(*keys)
        self.desk.wait_for(f"the end of {title}", lambda: window not in self.windows(title))

    def entries(self, package=None):
        package = package or self.folder.package
        if not package.exists():
            return []
        answer = run(KESTRUM, "info", "--json", package, check=False)
        return [entry["title"] for entry in json.loads(answer.stdout)["index"]] if answer.returncode == 0 else []

    def state(self, package=None):
        package = package or self.folder.package
        answer = run(KESTRUM, "info", "--json", package, check=False)
        return json.loads(answer.stdout)["state"] if answer.returncode == 0 else ""

    def wait_for_entries(self, count, package=None):
        try:
            self.desk.wait_for(f"{count} entries", lambda: len(self.entries(package)) >= count)
        finally:
            self.see("entries")

    def recorders(self):
        """The programs that serve this office."""
        table = run("ps", "-eo", "pid=,args=").stdout.splitlines()
        ours = [int(line.split()[0]) for line in table if "kestrum attach --pipe" in line]
        return [pid for pid in ours if stage.environment_of(pid).get("DISPLAY") == self.desk.env["DISPLAY"]]

    def another_deck(self, name):
        deck = self.folder.path / name
        shutil.copy(ROOT / "samples" / "lecture.pptx", deck)
        return deck
