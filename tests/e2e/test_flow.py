"""The whole flow through the built programs, headless by steps and in a real window."""

import ctypes
import fcntl
import os
import shutil
import signal
import subprocess
import time
import unittest

from harness import BIN, FAST_CLOCK, HomeTest, Screen, WindowTest


def available_memory():
    with open("/proc/meminfo") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("MemAvailable")) * 1024


class Headless(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"\xff\xd8 no real picture")

    def test_what_waits_for_nothing_strikes_between_the_stages(self):
        trees = [self.home / str(number) for number in range(3)]
        self.share("--tap-now", "addButton", "--wait", "0.1", "--tree", trees[0], "--wait", "0.25", "--tree", trees[1],
                   "--wait", "0", "--tap-now", "addButton", self.photo, expect=65)
        self.share("--tap", "addButton", "--wait", "60", "--tree", trees[2], "--tap", "addButton", self.photo)
        self.assertEqual([Screen(tree).view("resultLabel")["text"] for tree in trees], ["Added!", "Adding...", "Done"])

    @unittest.skipIf(len(os.sched_getaffinity(0)) < 2 or available_memory() < 4 << 30, "one processor, or little memory")
    def test_files_are_decoded_by_as_many_helpers_as_can_work_at_once(self):
        for program, name in (("sela-media", "photo.jpg"), ("sela-media-video", "film.mp4")):
            started = self.home / "started"
            helper = self.write("helpers/" + program,
                                f"#!/bin/sh\necho >> {started}\nsleep 0.5\nexec {BIN / program}\n".encode())
            os.chmod(helper, 0o755)
            for files, helpers in ((1, 1), (3, 2)):
                started.write_text("")
                shared = [self.write(f"{number}/{name}", b"content") for number in range(files)]
                self.share(*shared, expect=3, environment={"SELA_MEDIA_DIRECTORY": str(self.home / "helpers")})
                self.assertEqual(len(started.read_text()), helpers, f"{files} of {name}")


class Window(WindowTest):
    def setUp(self):
        super().setUp()
        self.photo = self.write("photo.jpg", b"content")

    def test_a_click_on_add_adds(self):
        tree = self.home / "tree.json"
        self.share("--tree", tree, self.photo, expect=3)
        x, y, width, height = Screen(tree).view("addButton")["frame"]
        process = self.open_card("--screen", "375x667", self.photo)
        time.sleep(0.5)
        self.x("mousemove", "--window", self.window, round(x + width / 2), round(y + height / 2), "click", 1)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(self.ledger_values("preferredName"), ["photo.jpg"])

    @unittest.skipUnless(shutil.which("import") and shutil.which("compare"), "needs ImageMagick")
    def test_the_window_shows_what_the_snapshot_shows(self):
        picture, screenshot = self.home / "picture.png", self.home / "screenshot.png"
        self.share("--snapshot", picture, self.photo, expect=3)
        process = self.open_card("--screen", "375x667", self.photo)
        time.sleep(1)
        subprocess.run(["import", "-window", self.window, screenshot], env=self.environment, check=True, timeout=60)
        process.terminate()
        # The card alone: around it the snapshot has a backdrop and the window its own background.
        for file in (picture, screenshot):
            subprocess.run(["convert", file, "-crop", "300x370+37+148", "+repage", file], check=True)
        compared = subprocess.run(["compare", "-metric", "RMSE", picture, screenshot, "null:"],
                                  capture_output=True, text=True)
        self.assertLess(float(compared.stderr.split("(")[1].rstrip(")")), 0.02)


class Outcome(WindowTest):
    def add_in_window(self, *arguments, **options):
        process = self.open_card(*arguments, stderr=subprocess.PIPE, **options)
        self.focus()
        self.keys("Return")
        return process

    def ended(self, process, status):
        told = process.communicate(timeout=30)[1].decode()
        self.assertEqual(process.returncode, status, told)
        return told

    def test_a_run_that_is_stuck_says_where_and_can_be_left(self):
        process = self.add_in_window(self.write("empty.jpg", b""))
        time.sleep(3)
        self.assertIsNone(process.poll())
        self.keys("Escape")
        self.assertIn("empty.jpg was not added: the file is empty", self.ended(process, 4))

    def test_what_was_not_added_stays_on_the_card_until_it_is_read(self):
        files = [self.write("a.jpg", b"x"), self.write("big.jpg", bytes(1000))]
        process = self.add_in_window("--quiet", *files, command=("prlimit", "--fsize=900000"))
        os.truncate(files[1], 1_000_000)
        time.sleep(4)
        self.assertIsNone(process.poll())
        self.keys("Escape")
        self.assertIn("big.jpg was not added: File too large", self.ended(process, 1))

    def put_aside(self, *files):
        """Adds a film and other files, and puts the window aside while the film is copied."""
        film = self.write("video.mov", b"")
        os.truncate(film, 300 << 20)
        process = self.add_in_window(film, *files, command=(
            "env", f"LD_PRELOAD={FAST_CLOCK} {FAST_CLOCK.with_name('sela-slow-copy.so')}", "SELA_CLOCK_SPEED=10"))
        while self.x("search", "--onlyvisible", "--name", "^Sela$", check=False):
            self.keys("Escape")
        self.assertEqual((process.poll(), self.ledger()), (None, {}))
        return process

    @unittest.skipUnless(FAST_CLOCK.exists(), "needs the fast clock")
    def test_a_save_put_aside_outlives_the_display(self):
        process = self.put_aside(self.write("b.jpg", b"x"))
        self.display.kill()
        self.ended(process, 0)
        self.assertEqual(self.ledger_values("preferredName"), ["video.mov", "b.jpg"])

    @unittest.skipUnless(FAST_CLOCK.exists(), "needs the fast clock")
    def test_a_save_that_is_stuck_behind_a_window_put_aside_ends(self):
        told = self.ended(self.put_aside(self.write("empty.jpg", b""), self.write("c.jpg", b"x")), 4)
        self.assertRegex(told, r"empty\.jpg was not added: the file is empty.*\nsela-share: not tried: c\.jpg\n")
        self.assertEqual(self.ledger_values("preferredName"), ["video.mov"])


class Signals(HomeTest):
    def test_an_end_finishes_what_is_nearly_done_and_removes_the_rest(self):
        self.provision()
        files = [self.write(name, b"x") for name in ("a.mov", "b.mov")]
        os.truncate(files[1], 6 << 30)
        process = self.start_share(*files, "--tap", "addButton")
        while b"copyItem" not in process.stderr.readline():
            pass
        process.terminate()
        self.assertIn(b"sela-share: 1 of 2 files added to Default Album\n", process.communicate()[1])
        self.assertEqual(process.returncode, 1)
        self.assertEqual(self.ledger_values("preferredName"), ["a.mov"])
        self.assertEqual(len(list(self.items.iterdir())), 1)


@unittest.skipIf(os.path.exists("/usr/bin/dbus-launch"), "which would be started in place of the false one")
class SessionBus(HomeTest):
    def test_none_is_started_to_tell_of_a_failure(self):
        self.provision()
        launcher = self.write("bin/dbus-launch", f"#!/bin/sh\n: >{self.home}/launched\n".encode())
        os.chmod(launcher, 0o755)
        del self.environment["DBUS_SESSION_BUS_ADDRESS"]
        self.environment |= {"PATH": f"{self.home}/bin:{os.environ['PATH']}", "DISPLAY": ":987"}
        self.add(self.write("a.jpg", b"x"), self.write("b.txt", b"x"), expect=1)
        self.assertFalse((self.home / "launched").exists())


class Lifetime(WindowTest):
    def test_a_request_that_ends_before_a_frame_was_shown_ends_the_process(self):
        # A window manager that maps no window.
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


class Streams(HomeTest):
    def test_what_is_printed_goes_into_no_file(self):
        self.provision()
        photo = self.write("a.jpg", b"x")
        commands = {("sela-vault", "album", "add", "New"): (">&-", 1),
                    ("sela-vault", "album", "remove", "New"): ("2>&-", 0),
                    ("sela-vault", "album", "list"): (">&- 2>&-", 1),
                    ("sela-share", "--headless", "--tap", "addButton", photo): ("<&- >&- 2>&-", 0),
                    ("sela-share", "--headless", "--json", "--tap", "addButton", photo, photo): (">&-", 74),
                    ("sela-share", "--version"): (">&-", 74)}
        for (program, *arguments), (closed, status) in commands.items():
            with self.subTest(program=program, arguments=arguments):
                ended = subprocess.run(["sh", "-c", f'exec "$@" {closed}', "sh", BIN / program, *arguments],
                                       env=self.environment, capture_output=True, timeout=60)
                self.assertEqual(ended.returncode, status, ended.stderr)
                self.assertEqual(self.settings.read_bytes()[:16], b"SQLite format 3\0")
        self.assertEqual(len(self.ledger()), 3)
        self.assert_recorded_files_are_whole({"a.jpg": [b"x"]})

    def test_an_output_that_is_full_is_told(self):
        with open("/dev/full", "w") as full:
            ended = subprocess.run([BIN / "sela-share", "--help"], env=self.environment, stdout=full,
                                   stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((ended.returncode, ended.stderr), (74, b"sela-share: standard output cannot be written\n"))


class Log(HomeTest):
    def test_a_standard_error_that_nobody_reads_stops_nothing(self):
        self.provision()
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        os.write(writer, bytes(fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)))
        process = self.start_share(self.write("a.jpg", b"x"), "--tap", "addButton", stderr=writer)
        os.close(writer)
        self.assertEqual(process.wait(30), 0)
