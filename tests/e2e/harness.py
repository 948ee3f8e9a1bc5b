"""What the end-to-end tests share: a home folder of its own for each test, and running the built programs in it."""

import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import tempfile
import unittest

BIN = pathlib.Path(os.environ["SELA_BIN_DIR"])
FAST_CLOCK = BIN.parent / "tests/e2e/sela-fast-clock.so"
GROUP = "group.sela.vault"
ROOT = pathlib.Path(__file__).parents[2]

# A picture of one pixel.
PNG = bytes.fromhex("89504e470d0a1a0a0000000d4948445200000001000000010802000000907753de0000000c49444154789c63f8cfc0000003010100"
                    "c9fe92ef0000000049454e44ae426082")

CATALOGUE = [
    {"namePath": ["Family"], "fake": False},
    {"namePath": ["Trips"], "fake": False},
    {"namePath": ["Trips", "Rome"], "fake": False},
    {"namePath": ["Private"], "fake": False, "password": "2580"},
    {"namePath": ["Private", "Letters"], "fake": False},
    {"namePath": ["Recipes"], "fake": True},
]


def kept_kinds():
    """The file extensions of the kinds that the store keeps."""
    source = (ROOT / "src/store/FileKind.cpp").read_text()
    return {word for table in re.findall(r'\{("[^}]+)\}', source) for word in re.findall(r'"([^"]+)"', table)}


def views(tree):
    """Every view of a tree, in order."""
    yield tree
    for view in tree["subviews"]:
        yield from views(view)


class Screen:
    """A --tree file."""

    def __init__(self, path):
        self.root = json.loads(pathlib.Path(path).read_text())

    def view(self, name):
        return next(view for view in views(self.root) if view["name"] == name)


class HomeTest(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="sela-e2e-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.container = self.home / "data/sela/groups" / GROUP
        self.items = self.container / "Items"
        self.settings = self.home / "config/sela" / (GROUP + ".sqlite3")
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.home),
            "XDG_DATA_HOME": str(self.home / "data"),
            "XDG_CONFIG_HOME": str(self.home / "config"),
            "XDG_RUNTIME_DIR": str(self.home),
            "LANG": "C.UTF-8",
            # Otherwise a program that looks for a session bus starts one, which keeps running.
            "DBUS_SESSION_BUS_ADDRESS": "disabled:",
        }

    def run_program(self, name, *arguments, expect=0, environment=None, **options):
        """Runs a program to its end, with additions to its environment, and checks its status (None: any); standard
        output and error are text."""
        result = subprocess.run([BIN / name, *map(os.fsencode, arguments)],
                                env=self.environment | (environment or {}),
                                capture_output=True, timeout=120, **options)
        result.stdout = result.stdout.decode(errors="replace")
        result.stderr = result.stderr.decode(errors="replace")
        if expect is not None:
            self.assertEqual(result.returncode, expect, result.stdout + result.stderr)
        return result

    def vault(self, *arguments, **options):
        return self.run_program("sela-vault", *arguments, **options)

    def share(self, *arguments, **options):
        return self.run_program("sela-share", "--headless", *arguments, **options)

    def put_setting(self, key, text, kind="data"):
        """Stores a value that none of the programs would."""
        with sqlite3.connect(self.settings) as connection:
            connection.execute("INSERT OR REPLACE INTO settings VALUES (?, ?, ?)",
                               (key, kind, text.encode() if kind == "data" else text))

    def add(self, *files, **options):
        """Shares files and taps Add."""
        return self.share(*files, "--tap", "addButton", **options)

    def start(self, *command, **options):
        """Starts a command that is ended with the test."""
        process = subprocess.Popen([*map(os.fsencode, command)], env=self.environment,
                                   **{"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL} | options)
        for stream in filter(None, (process.stdout, process.stderr)):
            self.addCleanup(stream.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        return process

    def start_share(self, *arguments, stderr=subprocess.PIPE):
        """Starts a share without a window, whose log can be read."""
        return self.start(BIN / "sela-share", "--headless", *arguments, stderr=stderr)

    def provision(self, passcode="123456", decoy="0000"):
        self.vault("init")
        catalogue = self.write("catalogue.json", json.dumps(CATALOGUE).encode())
        self.vault("publish", catalogue, "--passcode-file", self.write("passcode", passcode.encode()),
                   "--decoy-passcode-file", self.write("decoy", decoy.encode()))

    def write(self, name, content):
        """Makes a file below the home; the name may be bytes."""
        path = os.path.join(os.fsencode(self.home), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        return os.fsdecode(path)

    def ledger(self):
        """The ledger as another program reads it from the settings."""
        if not self.settings.exists():
            return {}
        # Opened for writing: after a kill inside a transaction the first reader rolls it back.
        with sqlite3.connect(f"file:{self.settings}?mode=rw", uri=True) as connection:
            row = connection.execute("SELECT value FROM settings WHERE key = 'sharedItems'").fetchone()
        return json.loads(row[0]) if row else {}

    def ledger_values(self, field):
        """The values of a field of the ledger's entries, in their order."""
        return [entry.get(field) for entry in self.ledger().values()]

    def assert_recorded_files_are_whole(self, contents):
        """Checks that every ledger entry has its file, with one of the contents that were shared under its name."""
        for entry in self.ledger().values():
            content = (self.items / entry["fileName"]).read_bytes()
            self.assertIn(content, contents[entry["preferredName"]], entry)


@unittest.skipUnless(shutil.which("Xvfb") and shutil.which("xdotool"), "needs Xvfb and xdotool")
class WindowTest(HomeTest):
    """A person at a display of 600 by 800 pixels, without a compositor: an ordinary window of 375 by 667."""

    def setUp(self):
        super().setUp()
        self.provision()
        read, write = os.pipe()
        self.display = self.start("Xvfb", "-displayfd", str(write), "-screen", "0", "600x800x24", "-nolisten", "tcp", "-noreset",
                                  pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()

    def x(self, *arguments, check=True):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=check, timeout=60,
                              capture_output=True, text=True).stdout.strip()

    def open_card(self, *arguments, command=(), stderr=subprocess.DEVNULL):
        """Starts the extension through a command that runs it, and waits for its window."""
        process = self.start(*command, BIN / "sela-share", *arguments, stderr=stderr)
        self.window = self.x("search", "--sync", "--onlyvisible", "--name", "^Sela$").splitlines()[0]
        return process

    def focus(self):
        """Gives the window the keyboard, as a window manager would."""
        self.x("windowfocus", "--sync", self.window)

    def keys(self, *names):
        self.x("key", "--delay", 60, *names)
