"""A package installed into a root of its own, and commands that see it as if it were installed on this machine."""
import os
import pathlib
import shutil
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ.get("KESTRUM_BUILD", ROOT / "build" / "release"))
PATIENCE = 600  # seconds; a bound for a hang, not a measure of speed


def run(*command, check=True, **options):
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=PATIENCE, **options)
    if check and result.returncode != 0:
        raise AssertionError(f"{command} ended with {result.returncode}\n{result.stdout}\n{result.stderr}")
    return result


def build_package(folder, *options):
    """Makes the package; gives its path."""
    folder.mkdir(exist_ok=True)
    output = run(ROOT / "packaging" / "build-deb", *options, "--into", folder, BUILD).stdout
    return pathlib.Path(output.rsplit("package: ", 1)[1].strip())


class Machine:
    """An empty root with a package database, a user's home, and this machine's programs below an installed /usr."""

    def __init__(self):
        self.room = pathlib.Path(tempfile.mkdtemp(prefix="kestrum-package."))
        self.root = self.room / "root"
        self.home = self.room / "home"
        database = self.root / "var" / "lib" / "dpkg"
        for folder in (database / "info", database / "updates", self.home):
            folder.mkdir(parents=True)
        for name in ("status", "available"):
            (database / name).touch()

    def remove(self):
        shutil.rmtree(self.room, ignore_errors=True)

    def dpkg(self, *words):
        """dpkg on this root. What the package depends on is this machine's; its scripts run outside of the root."""
        rootless = [] if os.getuid() == 0 else ["fakeroot"]
        return run(*rootless, "dpkg", f"--root={self.root}", "--force-depends", "--force-script-chrootless",
                   "--force-not-root", f"--log={self.room}/dpkg.log", *words)

    def files(self):
        """All that lies in the root but for dpkg's own notes."""
        everything = (path.relative_to(self.root) for path in self.root.rglob("*"))
        return sorted(str(path) for path in everything if not str(path).startswith("var/lib/dpkg"))

    def run(self, *command, **options):
        """A command to which the root's /usr is laid over this machine's."""
        names = ["--user", "--map-root-user"] if os.getuid() != 0 else []
        script = f'mount -t overlay overlay -o "lowerdir={self.root}/usr:/usr" /usr && exec "$@"'
        environment = dict(os.environ, HOME=str(self.home))
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            environment.pop(name, None)
        return run("unshare", *names, "--mount", "sh", "-c", script, "sh", *command, env=environment, **options)

    def on_stage(self, *command):
        """The same on a private screen whose microphone hears speech. Settings stay in the user's home."""
        return self.run(ROOT / "tools" / "private-screen", "--speech", ROOT / "samples" / "speech.txt", "--settings",
                        self.home / ".config", *command)
