"""The Debian package: what is in it, and its life on a machine: installed, used, upgraded, removed."""
import atexit
import functools
import gzip
import json
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from installed import BUILD, ROOT, Machine, build_package, run


def version():
    return re.search(r'<kestrum ver="([^"]+)"', (ROOT / "install" / "default.ksp").read_text()).group(1)


@functools.lru_cache(maxsize=None)
def package(*options):
    """The package; made once for all tests."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-made."))
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return build_package(folder, *options)


class ContentsTest(unittest.TestCase):
    """One package, unpacked once; each test looks at another side of it."""

    @classmethod
    def setUpClass(cls):
        cls.room = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-contents."))
        cls.addClassCleanup(shutil.rmtree, cls.room, ignore_errors=True)
        cls.package = package()
        cls.usr = cls.room / "root" / "usr"
        run("dpkg-deb", "-x", cls.package, cls.room / "root")

    def field(self, name):
        return run("dpkg-deb", "-f", self.package, name).stdout.strip()

    def test_name_and_version_are_those_of_the_program(self):
        self.assertEqual((self.field("Package"), self.field("Version")), ("kestrum", version()))
        self.assertEqual(self.package.name, f"kestrum_{version()}_{self.field('Architecture')}.deb")
        self.assertEqual(run(BUILD / "install" / "kestrum", "--version").stdout, f"kestrum {version()}\n")

    def test_page_and_changelog_name_the_version(self):
        page = gzip.open(self.usr / "share/man/man1/kestrum.1.gz", "rt").read()
        self.assertIn(f'"Kestrum {version()}"', page)
        changes = gzip.open(self.usr / "share/doc/kestrum/changelog.gz", "rt").read()
        self.assertTrue(changes.startswith(f"kestrum ({version()}) "))

    def test_it_depends_on_what_the_programs_are_linked_with_and_on_what_they_call(self):
        needed = {word.split()[0] for word in self.field("Depends").split(",")}
        self.assertLessEqual({"libreoffice-impress", "ffmpeg", "xdg-utils", "libqt6widgets6", "libavformat59",
                              "libuno-sal3", "libpulse0", "libsqlite3-0"}, needed)

    def test_everything_belongs_to_root_and_may_be_read_by_all(self):
        for line in run("dpkg-deb", "-c", self.package).stdout.splitlines():
            self.assertRegex(line, r"^(drwxr-xr-x|-rwxr-xr-x|-rw-r--r--|lrwxrwxrwx) root/root ")

    def test_the_folder_of_the_programs_shows_every_file_of_the_install_folder(self):
        shown = {path.name for path in (self.usr / "lib/kestrum").iterdir()}
        self.assertLessEqual({path.name for path in (ROOT / "install").iterdir()}, shown)
        self.assertLessEqual({"kestrum", "ksmedia", "ksFmtCvt", "ksECT", "mp4GetKeyFrame", "ffmpeg"}, shown)
        for path in (self.usr / "lib/kestrum").iterdir():
            if path.is_symlink() and path.name != "ffmpeg":
                self.assertTrue(path.exists(), f"{path} leads nowhere")
                self.assertFalse(path.readlink().is_absolute(), path)

    def test_the_menu_of_impress_is_there_for_every_user(self):
        folder = self.usr / "lib/libreoffice/share/extensions/kestrum"
        for name in ("description.xml", "META-INF/manifest.xml", "Addons.xcu", "ProtocolHandler.xcu"):
            run("xmllint", "--noout", folder / name)
        self.assertIn(f'<version value="{version()}"/>', (folder / "description.xml").read_text())
        self.assertTrue((folder / "lib/kestrum.uno.so").is_file())

    def test_the_programs_are_stripped(self):
        office = self.usr / "lib/libreoffice/share/extensions/kestrum/lib"
        for program in (self.usr / "lib/kestrum/kestrum", self.usr / "lib/kestrum/ksmedia", office / "kestrum.uno.so"):
            self.assertNotIn(".debug_info", run("readelf", "-S", "-W", program).stdout)

    def test_menu_entry_and_its_icon(self):
        entry = self.usr / "share/applications/kestrum.desktop"
        self.assertEqual(run("desktop-file-validate", entry).stdout, "")
        for line in re.findall(r"^Exec=(.+)$", entry.read_text(), re.M):
            words = line.split()
            for path in (pathlib.Path(word) for word in words if word.startswith("/usr")):
                self.assertTrue((self.usr / path.relative_to("/usr")).is_file(), path)
            if "kestrum" in words:
                self.assertIn(words[words.index("kestrum") + 1], ("configure", "devices", "resolution"))
        for size in (16, 24, 32, 48, 64, 128, 256):
            for name in ("apps/kestrum.png", "mimetypes/application-x-kestrum.png"):
                picture = self.usr / f"share/icons/hicolor/{size}x{size}" / name
                self.assertIn(f"{size} x {size}", run("file", picture).stdout)
        for name in ("apps/kestrum.svg", "mimetypes/application-x-kestrum.svg"):
            run("xmllint", "--noout", self.usr / "share/icons/hicolor/scalable" / name)

    def test_a_click_in_the_menu_that_fails_is_told_in_a_window(self):
        """A stand-in for zenity says what it is asked to show."""
        tools = self.room / "tools"
        tools.mkdir()
        (tools / "zenity").write_text("#!/bin/sh\nprintf '%s\\n' \"$@\" >>\"$0.shown\"\n")
        (tools / "zenity").chmod(0o755)
        environment = {"PATH": f"{tools}:/usr/bin:/bin", "DISPLAY": ":987", "HOME": str(self.room)}
        runner = self.usr / "lib/kestrum/on-desktop"
        failed = run(runner, BUILD / "install" / "kestrum", "configure", check=False, env=environment)
        self.assertEqual(failed.returncode, 1)
        self.assertIn("--text=The display cannot be opened; start the recorder from a graphical X11 session.",
                      (tools / "zenity.shown").read_text().splitlines())
        (tools / "zenity.shown").unlink()
        run(runner, BUILD / "install" / "kestrum", "help", env=environment)
        self.assertFalse((tools / "zenity.shown").exists(), "nothing to tell")

    def test_a_recording_of_less_than_a_second_has_a_picture_too(self):
        for seconds, name in ((3, "long.ktr"), (0.4, "a short 100% one.ktr")):
            movie, picture = self.room / name, self.room / f"{name}.png"
            run("ffmpeg", "-v", "error", "-f", "lavfi", "-i", f"testsrc=size=640x360:rate=10:duration={seconds}", "-f",
                "matroska", movie)
            run(self.usr / "lib/kestrum/thumbnail", movie, picture, "256")
            self.assertIn("256 x 144", run("file", picture).stdout)

    def test_the_manual_page_is_set_without_a_warning(self):
        page = self.usr / "share/man/man1/kestrum.1.gz"
        result = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
        self.assertEqual(result.stderr, "")
        self.assertEqual(run("mandoc", "-T", "lint", "-W", "warning", page).stdout, "")

    def test_the_checker_of_debian_packages_finds_nothing(self):
        result = run("lintian", "--fail-on", "error,warning", self.package, check=False)
        self.assertEqual((result.returncode, result.stdout), (0, ""), result.stderr)


class TypeTest(unittest.TestCase):
    """What a desktop takes a package for."""

    @classmethod
    def setUpClass(cls):
        cls.room = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-type."))
        cls.addClassCleanup(shutil.rmtree, cls.room, ignore_errors=True)
        known = cls.room / "mime" / "packages"
        known.mkdir(parents=True)
        shutil.copy("/usr/share/mime/packages/freedesktop.org.xml", known)
        description = ROOT / "packaging" / "desktop" / "kestrum.xml"
        run("xmllint", "--noout", description)
        shutil.copy(description, known)
        run("update-mime-database", cls.room / "mime", env={"PKGSYSTEM_ENABLE_FSYNC": "0", "PATH": "/usr/bin"})

    def type_of(self, name, content):
        file = self.room / name
        file.write_bytes(content)
        environment = {"XDG_DATA_DIRS": str(self.room), "XDG_DATA_HOME": str(self.room / "none"), "PATH": "/usr/bin",
                       "HOME": str(self.room)}
        told = run("gio", "info", "-a", "standard::content-type", file, env=environment).stdout
        return re.search(r"standard::content-type: (\S+)", told).group(1)

    MOVIE = bytes.fromhex("1a45dfa3a3428681014287810442f7810142f2810442f381084282886d6174726f736b61")

    def test_by_its_name(self):
        self.assertEqual(self.type_of("lecture.ktr", self.MOVIE), "application/x-kestrum")

    def test_by_what_is_in_it(self):
        content = self.MOVIE + bytes(140) + b"WA\x93Kestrum package 8.0" + bytes(400)
        self.assertEqual(self.type_of("lecture", content), "application/x-kestrum")

    def test_another_movie_stays_one(self):
        self.assertEqual(self.type_of("film.mkv", self.MOVIE + bytes(600)), "video/x-matroska")

    def test_what_opens_movies_opens_it(self):
        parents = (self.room / "mime" / "subclasses").read_text().split("\n")
        self.assertIn("application/x-kestrum video/x-matroska", parents)


class CompletionTest(unittest.TestCase):
    def completed(self, *words, folder=ROOT):
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kestrum; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        told = run("bash", "-c", script, "bash", ROOT / "packaging/completion/kestrum.bash", "kestrum", *words,
                   cwd=folder).stdout
        return sorted(told.split("\n"))[1:] if told.strip() else []

    def test_commands(self):
        self.assertEqual(self.completed("re"), ["record", "resolution"])
        self.assertEqual(self.completed("publish", ""), ["mp4"])

    def test_options_and_their_values(self):
        self.assertEqual(self.completed("verify", "--"), ["--json", "--repair"])
        self.assertEqual(self.completed("publish", "mp4", "--webcam", "top"), ["top-left", "top-right"])

    def test_files_that_suit_the_command(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("my deck.ODP", "talk.pptx", "talk.ktr", "talk.txt"):
                (pathlib.Path(folder) / name).touch()
            self.assertEqual(self.completed("record", "", folder=folder), ["my deck.ODP", "talk.pptx"])
            self.assertEqual(self.completed("info", "", folder=folder), ["talk.ktr"])
            self.assertEqual(self.completed("publish", "mp4", "t", folder=folder), ["talk.ktr", "talk.pptx"])


    def test_fish_offers_the_same(self):
        script = ROOT / "packaging/completion/kestrum.fish"
        def offered(line):
            told = run("fish", "--no-config", "-c", f"source {script}; complete -C '{line}'").stdout
            return [entry.split("\t")[0] for entry in told.splitlines()]
        self.assertEqual(offered("kestrum re"), ["record", "resolution"])
        self.assertEqual(offered("kestrum verify --"), ["--json", "--repair"])
        self.assertEqual(offered("kestrum publish mp4 --webcam top"), ["top-left", "top-right"])

    def test_zsh_understands_its_script(self):
        run("zsh", "-n", ROOT / "packaging/completion/kestrum.zsh")


class LifeTest(unittest.TestCase):
    """On a machine of its own: installed, used by a user, upgraded, used again, also from Impress' menu, removed without
    a trace."""

    def setUp(self):
        self.machine = Machine()
        self.addCleanup(self.machine.remove)

    def recorded(self, deck, first):
        self.machine.on_stage("kestrum", "record", deck, "--advance", "0.5", "--from", str(first))
        return json.loads(self.machine.run("kestrum", "info", "--json", deck.with_suffix(".ktr")).stdout)

    def extensions(self):
        """What the office of every user has."""
        profile = f"-env:UserInstallation=file://{self.machine.room}/office"
        return self.machine.run("unopkg", "list", "--bundled", profile).stdout

    def test_installed_used_upgraded_and_removed(self):
        machine = self.machine
        empty = machine.files()
        machine.dpkg("--install", package())
        self.assertEqual(machine.run("kestrum", "--version").stdout, f"kestrum {version()}\n")
        self.assertIn("kestrum record DECK", machine.run("kestrum", "help").stdout)

        self.assertIn("Identifier: org.kestrum.impress", self.extensions())

        deck = machine.home / "lecture.pptx"
        shutil.copy(machine.root / "usr/share/doc/kestrum/examples/lecture.pptx", deck)
        first = self.recorded(deck, 6)
        self.assertEqual(first["state"], "whole")
        self.assertGreaterEqual(len(first["index"]), 2)
        published = machine.run("kestrum", "publish", "mp4", "--json", deck)
        self.assertTrue(pathlib.Path(json.loads(published.stdout)["page"]).is_file())
        settings = machine.home / ".config/kestrum/settings.sqlite"
        self.assertTrue(settings.is_file())

        picture = machine.room / "picture.png"
        machine.run("/usr/lib/kestrum/thumbnail", deck.with_suffix(".ktr"), picture, "128")
        self.assertIn("128 x 72", run("file", picture).stdout)

        kept = settings.read_bytes()
        machine.dpkg("--install", package("--version", version() + "+next"))
        state = run("dpkg-query", f"--admindir={machine.root}/var/lib/dpkg", "-W", "-f=${Status} ${Version}", "kestrum")
        self.assertEqual(state.stdout, f"install ok installed {version()}+next")
        self.assertEqual(settings.read_bytes(), kept)
        again = self.recorded(deck, 7)
        self.assertEqual(again["index"][:len(first["index"])], first["index"])
        self.assertGreater(len(again["index"]), len(first["index"]))
        self.assertEqual(machine.run("kestrum", "verify", deck.with_suffix(".ktr")).returncode, 0)

        machine.run("env", "KESTRUM_INSTALL=/usr/lib/kestrum", "python3", "-m", "unittest",
                    "person_test.PersonTest.test_a_lecture_recorded_and_published_from_the_menu_twice_in_the_same_office",
                    cwd=ROOT / "tests/e2e")

        machine.dpkg("--purge", "kestrum")
        self.assertEqual(machine.files(), empty)
        self.assertTrue(settings.is_file() and deck.with_suffix(".ktr").is_file(), "what is the user's stays")

    def test_an_office_that_cannot_be_driven_is_named_at_the_installation(self):
        self.assertNotIn("cannot drive", self.machine.dpkg("--install", package()).stdout)
        (self.machine.root / "var/lib/flatpak/app/org.libreoffice.LibreOffice").mkdir(parents=True)
        (self.machine.root / "snap/bin").mkdir(parents=True)
        (self.machine.root / "snap/bin/libreoffice").touch()
        self.assertIn("LibreOffice is also installed as a Flatpak and Snap here. Kestrum cannot drive that one",
                      self.machine.dpkg("--install", package()).stdout)


if __name__ == "__main__":
    unittest.main()
