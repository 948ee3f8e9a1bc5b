"""The whole flow through the built programs: headless by steps, and in a real window by clicks."""

import os
import shutil
import subprocess
import time
import unittest

from harness import HomeTest, Screen, WindowTest


class Headless(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"\xff\xd8 no real picture")

    def test_from_the_card_to_the_album(self):
        files = [self.photo, self.write("video.mov", os.urandom(100))]
        pictures = [self.home / f"{i}.png" for i in range(4)]
        self.share("--snapshot", pictures[0], "--tap", "albumButton", "--snapshot", pictures[1],
                   "--type", "123456", "--tap", "showChildButton:1", "--snapshot", pictures[2],
                   "--tap", "row:1:1", "--tap", "addButton", "--wait", "2", "--snapshot", pictures[3], *files)
        self.assertEqual([(entry["albumNames"], entry["fake"]) for entry in self.ledger().values()],
                         [(["Trips", "Rome"], False)] * 2)
        self.assertEqual(len({picture.read_bytes() for picture in pictures}), 4)
        self.vault("import", "--into", self.home / "into")
        self.assertTrue((self.home / "into/vault/Trips/Rome/video.mov").exists())

    def test_a_locked_album_unfolds_with_its_own_password(self):
        unlock, tree = ["--tap", "albumButton", "--type", "123456"], self.home / "tree.json"
        for steps, unfolded in [([], False), (["--type", "1111", "--wait", "1", "--tap", "backButton"], False),
                                (["--type", "2580"], True)]:
            tap = ["--tap", "showChildButton:2"] if steps else []
            self.share(*unlock, *tap, *steps, "--tree", tree, self.photo, expect=3)
            self.assertEqual("Letters" in Screen(tree).shown_texts(), unfolded, steps)
        self.share(*unlock, "--tap", "row:2:0", "--tap", "addButton", self.photo)
        self.assertEqual([entry["albumNames"] for entry in self.ledger().values()], [["Private"]])

    def test_statuses(self):
        self.share("--tap", "button1", self.photo, expect=65)
        self.share("--tap", "cancelButton", self.photo, expect=3)
        self.share("--tap", "addButton", self.photo, "--wait", "0.01", expect=0)
        # The copy of an empty file can never end.
        result = self.add(self.photo, self.write("empty.jpg", b""), expect=4)
        self.assertIn("file 2 of 2", result.stderr)
        self.assertEqual([entry["preferredName"] for entry in self.ledger().values()], ["photo.jpg"] * 2)


class Window(WindowTest):
    def setUp(self):
        super().setUp()
        self.photo = self.write("photo.jpg", b"content")

    def place(self, name, *steps):
        """The middle of a view, as a headless run at the same screen size shows it after the same steps."""
        path = self.home / "place.json"
        self.share(*steps, "--tree", path, self.photo, expect=None)
        x, y, width, height = Screen(path).view(name)["frame"]
        return round(x + width / 2), round(y + height / 2)

    def click(self, point):
        self.x("mousemove", "--window", self.window, *point, "click", 1)

    def test_unlocking_picking_and_adding_by_clicks(self):
        album, add = self.place("albumButton"), self.place("addButton")
        digits = [self.place(f"button{digit}", "--tap", "albumButton") for digit in "123456"]
        process = self.open_card(self.photo)
        time.sleep(0.5)
        self.click(album)
        time.sleep(0.8)
        for digit in digits:
            self.click(digit)
            time.sleep(0.1)
        time.sleep(0.5)
        # The rows are 55 points high, below a strip of 46.
        self.click((150, 139 + 46 + 55 + 27))
        time.sleep(0.8)
        self.click(add)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual([(entry["preferredName"], entry["albumNames"]) for entry in self.ledger().values()],
                         [("photo.jpg", ["Trips"])])

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


if __name__ == "__main__":
    unittest.main()
