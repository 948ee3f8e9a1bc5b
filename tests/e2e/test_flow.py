"""The whole flow through the built programs, headless by steps and in a real window; what cannot be shared is told and
changes nothing."""

import ctypes
import os
import shutil
import socket
import subprocess
import time
import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import BIN, HomeTest, Screen, WindowTest

BLOCK = 2 * 1024 * 1024


class Headless(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"\xff\xd8 no real picture")

    def test_statuses(self):
        empty = self.write("empty.jpg", b"")  # its copy can never end
        for mode, environment in ((["--headless"], {}), ([], {"QT_QPA_PLATFORM": "offscreen"})):
            for steps, status in [(["--tap", "button1"], 65), (["--tap", "cancelButton"], 3),
                                  (["--tap", "addButton", "--wait", "60"], 0),
                                  (["--tap", "addButton", "--tap", "noButton", empty], 65),
                                  (["--tap", "addButton", empty], 4)]:
                result = self.run_program("sela-share", *mode, *steps[:2], self.photo, *steps[2:], expect=status,
                                          environment=environment)
            self.assertIn("file 2 of 2", result.stderr)
        self.assertEqual(set(self.ledger_values("preferredName")), {"photo.jpg"})

    def test_files_arrive_byte_for_byte_and_are_imported(self):
        contents = {"photo.jpg": os.urandom(BLOCK + 1), "video.mov": os.urandom(5), "song.MP3": os.urandom(BLOCK)}
        files = [self.write(name, content) for name, content in contents.items()]
        result = self.add(files[0], "file://" + files[1], files[2])
        self.assertNotIn("Adding", result.stderr)
        ledger = self.ledger()
        self.assertEqual([entry["preferredName"] for entry in ledger.values()], list(contents))
        for key, entry in ledger.items():
            self.assertEqual(entry["albumNames"], ["Default Album"])
            self.assertIs(entry["fake"], False)
            self.assertEqual(key, "Default Album-normal" + entry["fileName"])
            self.assertRegex(entry["fileName"], r"^\d{10}\.\d+" + entry["preferredName"])
            self.assertEqual((self.items / entry["fileName"]).read_bytes(), contents[entry["preferredName"]])
        self.vault("import", "--into", self.home / "into")
        for name, content in contents.items():
            self.assertEqual((self.home / "into/vault/Default Album" / name).read_bytes(), content)
        self.assertEqual(self.ledger(), {})
        self.assertEqual(list(self.items.iterdir()), [])


class Steps(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"content")

    def test_what_cannot_be_touched_is_told(self):
        def tap(name, *before):
            before = before or ("--tap", "albumButton", "--type", "123456", "--tap", name)
            result = self.share(*before, "--tap", "backButton", self.photo, expect=65)
            self.assertIn(f"sela-share: {name} is not on the screen, or is hidden or covered\n", result.stderr)

        with ThreadPoolExecutor(4) as pool:
            list(pool.map(tap, ["nothing", "", "button1", "addButton", "row:0:1", "row:4:0", "row:0", "row:-1:0", "row:0:x",
                                "row:0:0:0", "showChildButton:0", "showChildButton:4"]))
        tap("cancelButton", "--tap", "albumButton", "--type", "123456", "--tap-now", "backButton", "--tap-now", "cancelButton")

    def test_what_waits_for_nothing_strikes_between_the_stages(self):
        trees = [self.home / str(number) for number in range(3)]
        self.share("--tap-now", "addButton", "--wait", "0.1", "--tree", trees[0], "--wait", "0.35", "--tree", trees[1],
                   "--wait", "0", "--tap-now", "addButton", self.photo, expect=65)
        self.share("--tap", "addButton", "--wait", "60", "--tree", trees[2], "--tap", "addButton", self.photo)
        self.assertEqual([Screen(tree).view("resultLabel")["text"] for tree in trees], ["Added!", "Adding...", "Done"])


class Window(WindowTest):
    def setUp(self):
        super().setUp()
        self.photo = self.write("photo.jpg", b"content")

    def test_a_click_on_add_adds(self):
        tree = self.home / "tree.json"
        self.share("--tree", tree, self.photo, expect=3)
        x, y, width, height = Screen(tree).view("addButton")["frame"]
        process = self.open_card(self.photo)
        time.sleep(0.5)
        self.x("mousemove", "--window", self.window, round(x + width / 2), round(y + height / 2), "click", 1)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(self.ledger_values("preferredName"), ["photo.jpg"])

    @unittest.skipUnless(shutil.which("import") and shutil.which("compare"), "needs ImageMagick")
    def test_the_window_shows_what_the_snapshot_shows(self):
        picture, screenshot = self.home / "picture.png", self.home / "screenshot.png"
        self.share("--snapshot", picture, self.photo, expect=3)
        process = self.open_card(self.photo)
        time.sleep(1)
        subprocess.run(["import", "-window", self.window, screenshot], env=self.environment, check=True, timeout=60)
        process.terminate()
        # The card alone: around it one shows a backdrop and the other the window's own.
        for file in (picture, screenshot):
            subprocess.run(["convert", file, "-crop", "300x370+37+148", "+repage", file], check=True)
        compared = subprocess.run(["compare", "-metric", "RMSE", picture, screenshot, "null:"],
                                  capture_output=True, text=True)
        self.assertLess(float(compared.stderr.split("(")[1].rstrip(")")), 0.02)


class Lifetime(WindowTest):
    def test_a_request_that_ends_before_a_frame_was_shown_ends_the_process(self):
        # A window manager that shows no window.
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        display = ctypes.c_void_p(x11.XOpenDisplay(self.environment["DISPLAY"].encode()))
        x11.XDefaultRootWindow.restype = ctypes.c_ulong
        substructure_redirect = 1 << 20
        x11.XSelectInput(display, ctypes.c_ulong(x11.XDefaultRootWindow(display)), substructure_redirect)
        x11.XSync(display, 0)
        self.run_program("sela-share", self.write("photo.jpg", b"x"), "--tap-now", "cancelButton", expect=3)

    def test_an_end_while_fonts_are_still_being_read_is_no_crash(self):
        configuration = self.home / "fonts.conf"
        os.mkfifo(configuration)
        self.environment["FONTCONFIG_FILE"] = str(configuration)
        process = self.start(BIN / "sela-share", "--paste")
        time.sleep(0.5)
        configuration.write_text("<fontconfig><dir>/usr/share/fonts</dir></fontconfig>")
        self.assertEqual(process.wait(30), 64)


class BadInput(HomeTest):
    def test_unusable_arguments_are_told_before_anything_is_saved(self):
        self.provision()
        good = self.write("good.jpg", b"x")
        os.mkfifo(self.home / "fifo.jpg")
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(self.home / "socket.jpg"))
        for name, target in [("dangling", "nowhere"), ("loop", "loop.jpg"), ("zero", "/dev/zero"),
                             ("folder", "/proc/self"), ("pipe", "/proc/self/fd/0")]:
            os.symlink(target, self.home / (name + ".jpg"))
        files = [self.home / (name + ".jpg") for name in ("missing", "fifo", "socket", "dangling", "loop", "zero",
                                                          "folder", "pipe")]
        texts = {self.home: "is a folder; name the files in it", "https://a/b.jpg": "save it as a file and add that",
                 "missing\n.jpg": r"missing\\n\.jpg: .*No such file"}
        for argument in [*files, *texts, "/dev/zero", "file://elsewhere/a.jpg", ""]:
            with self.subTest(argument):
                result = self.add(good, argument, expect=64, input=b"")
                self.assertRegex(result.stderr, rf"^sela-share: [^\n]*{texts.get(argument, '')}[^\n]*\n$")
                self.assertEqual(self.ledger(), {})
        for environment, text in [({}, "no display; use --headless"),
                                  ({"DISPLAY": ":987"}, "display cannot be opened; .* or use --headless"),
                                  ({"QT_QPA_PLATFORM": "nowhere"}, "display cannot be opened; ")]:
            result = self.run_program("sela-share", good, environment=environment, expect=64)
            self.assertRegex(result.stderr, rf"^sela-share: [^\n]*{text}[^\n]*\n$")
        result = self.share("-", expect=64, input=b"no picture")
        self.assertIn("no picture", result.stderr)
        for options in [["--nonsense"], ["--screen", "12"], ["--scale", "x"], ["--type", "12a"], ["--tap"],
                        ["--screen", "400x800", "--screen", "12"], ["--screen=12"], ["--quiet=1"]]:
            self.share(*options, expect=64)

    def test_a_step_that_fails_cancels_at_once(self):
        self.provision()
        files = [self.write(name, b"x") for name in ("a.jpg", "b.jpg")]
        result = self.share("--headless", "--screen=320x568", *files, "--tap=addButton", "--tap-now=nothing", expect=65)
        self.assertIn("nothing is not on the screen", result.stderr)
        self.assertEqual(self.ledger(), {})

    def test_without_a_group_nothing_is_made(self):
        source = self.write("a.jpg", b"x")
        result = self.add(source)
        self.assertRegex(result.stderr, r'^sela-share: there is no vault to add to yet; [^\n]*"sela-vault init"\n')
        self.assertIn("SharedItemManager, shared folder is nil", result.stderr)
        self.assertFalse((self.home / "data").exists())
        self.assertFalse((self.home / "config").exists())
        for command in (["publish", source], ["import", "--into", self.home / "into"]):
            self.assertIn("not provisioned", self.vault(*command, expect=1).stderr)

    def test_a_catalogue_that_is_wrong_is_not_published(self):
        self.provision()
        before = self.vault("albums").stdout
        for text in [b"", b"{}", b"[1]", b'[{"namePath":["A"]}]', b'[{"namePath":"A","fake":false}]', b"[\xff]"]:
            self.vault("publish", self.write("bad.json", text), expect=1)
        self.vault("publish", self.home / "missing.json", expect=1)
        self.assertEqual(self.vault("albums").stdout, before)
