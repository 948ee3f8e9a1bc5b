"""The whole flow through the built programs, headless by steps and in a real window."""

import ctypes
import fcntl
import os
import shutil
import subprocess
import time
import unittest

from harness import BIN, HomeTest, Screen, WindowTest


class Headless(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"\xff\xd8 no real picture")

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


class Log(HomeTest):
    def test_a_standard_error_that_nobody_reads_stops_nothing(self):
        self.provision()
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        os.write(writer, bytes(fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)))
        process = self.start_share(self.write("a.jpg", b"x"), "--tap", "addButton", stderr=writer)
        os.close(writer)
        self.assertEqual(process.wait(30), 0)
