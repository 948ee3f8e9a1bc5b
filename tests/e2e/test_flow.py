"""The whole flow through the built programs: headless by steps, and in a real window by clicks and keys."""

import json
import os
import shutil
import subprocess
import time
import unittest

from harness import HomeTest, WindowTest


def views(tree):
    """Every view of a tree, in order."""
    yield tree
    for view in tree["subviews"]:
        yield from views(view)


class Screen:
    """A --tree file."""

    def __init__(self, path):
        with open(path) as file:
            self.root = json.load(file)

    def view(self, name):
        return next(view for view in views(self.root) if view["name"] == name)

    def shown_texts(self):
        def walk(view):
            if view["hidden"] or view["alpha"] == 0:
                return
            yield view.get("text", "")
            for below in view["subviews"]:
                yield from walk(below)

        return [text for text in walk(self.root) if text]


class Headless(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.photo = self.write("photo.jpg", b"\xff\xd8 no real picture")

    def tree(self, *steps, files=None, expect=3):
        path = self.home / "tree.json"
        self.share(*steps, "--tree", path, *(files or [self.photo]), expect=expect)
        return Screen(path)

    def test_from_the_card_to_the_album(self):
        video = self.write("video.mov", os.urandom(100))
        pictures = [self.home / f"{i}.png" for i in range(4)]
        self.share("--snapshot", pictures[0], "--tap", "albumButton", "--snapshot", pictures[1],
                   "--type", "123456", "--tap", "showChildButton:1", "--snapshot", pictures[2],
                   "--tap", "row:1:1", "--tap", "addButton", "--wait", "2", "--snapshot", pictures[3],
                   self.photo, video)
        self.assertEqual(len(self.ledger()), 2)
        for entry in self.ledger().values():
            self.assertEqual((entry["albumNames"], entry["fake"]), (["Trips", "Rome"], False))
        self.assertEqual(len({picture.read_bytes() for picture in pictures}), 4)
        self.vault("import", "--into", self.home / "into")
        self.assertTrue((self.home / "into/vault/Trips/Rome/video.mov").exists())

    def test_the_decoy_passcode_leads_to_the_decoy_albums(self):
        screen = self.tree("--tap", "albumButton", "--type", "0000")
        self.assertIn("Recipes", screen.shown_texts())
        self.assertNotIn("Trips", screen.shown_texts())
        self.share("--tap", "albumButton", "--type", "0000", "--tap", "row:0:0", "--tap", "addButton", self.photo)
        self.assertEqual([(entry["albumNames"], entry["fake"]) for entry in self.ledger().values()],
                         [(["Recipes"], True)])

    def test_a_locked_album_unfolds_with_its_own_password(self):
        unlock = ["--tap", "albumButton", "--type", "123456"]
        self.assertNotIn("Letters", self.tree(*unlock).shown_texts())
        folded = self.tree(*unlock, "--tap", "showChildButton:2", "--type", "1111", "--wait", "1", "--tap", "backButton")
        self.assertNotIn("Letters", folded.shown_texts())
        self.assertIn("Letters", self.tree(*unlock, "--tap", "showChildButton:2", "--type", "2580").shown_texts())
        self.share(*unlock, "--tap", "row:2:0", "--tap", "addButton", self.photo)
        self.assertEqual([entry["albumNames"] for entry in self.ledger().values()], [["Private"]])

    def test_the_tree_tells_the_screen_and_never_a_passcode(self):
        screen = self.tree("--tap", "albumButton", "--type", "91", "--wait", "0.2")
        self.assertEqual(screen.view("titleLabel")["text"], "Input Passcode")
        self.assertEqual([screen.view(f"indicator{i}")["hidden"] for i in (1, 2, 3)], [False, False, True])
        text = json.dumps(screen.root)
        for view in views(screen.root):
            self.assertNotIn("91", view.get("text", ""))
        self.assertNotIn("123456", text)
        card = self.tree()
        self.assertEqual(card.root["frame"], [0, 0, 375, 667])
        self.assertEqual(card.view("addButton")["background"], "AppTint")
        self.assertEqual(card.view("albumButton")["text"], "Add 1 file to Default Album")
        self.assertIn("SelaShareExtensionVc", [view.get("controller") for view in views(card.root)])

    def test_statuses(self):
        self.share("--tap", "nothing", self.photo, expect=65)
        self.share("--tap", "button1", self.photo, expect=65)
        self.share("--tap", "cancelButton", self.photo, expect=3)
        self.share("--tap", "addButton", self.photo, "--wait", "0.01", expect=0)
        self.assertEqual(len(self.ledger()), 1)

    def test_without_a_catalogue_the_picker_asks_for_the_main_application(self):
        self.settings.unlink()
        self.assertIn("Please launch the main Sela app first.", self.tree("--tap", "albumButton").shown_texts())


class Window(WindowTest):
    def place(self, name, *steps):
        """The middle of a view, as a headless run at the same screen size shows it after the same steps."""
        path = self.home / "place.json"
        self.share(*steps, "--tree", path, self.photo, expect=None)
        x, y, width, height = Screen(path).view(name)["frame"]
        return round(x + width / 2), round(y + height / 2)

    def click(self, point):
        self.x("mousemove", "--window", self.window, *point, "click", 1)

    def test_a_click_on_add_saves(self):
        self.photo = self.write("photo.jpg", b"content")
        add = self.place("addButton")
        process = self.open_card(self.photo)
        time.sleep(0.5)
        self.click(add)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual([entry["preferredName"] for entry in self.ledger().values()], ["photo.jpg"])

    def test_unlocking_and_picking_by_clicks(self):
        self.photo = self.write("photo.jpg", b"content")
        album = self.place("albumButton")
        digits = {digit: self.place(f"button{digit}", "--tap", "albumButton") for digit in "123456"}
        add = self.place("addButton")
        process = self.open_card(self.photo)
        time.sleep(0.5)
        self.click(album)
        time.sleep(0.8)
        for digit in "123456":
            self.click(digits[digit])
            time.sleep(0.1)
        time.sleep(0.5)
        # The rows are 55 points high, below a strip of 46.
        self.click((150, 139 + 46 + 55 + 27))
        time.sleep(0.8)
        self.click(add)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual([entry["albumNames"] for entry in self.ledger().values()], [["Trips"]])

    def test_escape_cancels(self):
        self.photo = self.write("photo.jpg", b"content")
        process = self.open_card(self.photo)
        self.x("windowfocus", "--sync", self.window, "key", "Escape")
        self.assertEqual(process.wait(30), 3)
        self.assertEqual(self.ledger(), {})

    @unittest.skipUnless(shutil.which("import") and shutil.which("compare"), "needs ImageMagick")
    def test_the_window_shows_what_the_snapshot_shows(self):
        self.photo = self.write("photo.jpg", b"content")
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
        difference = float(compared.stderr.split("(")[1].rstrip(")"))
        self.assertLess(difference, 0.02)


if __name__ == "__main__":
    unittest.main()
