"""Every string table through the built program: complete, filled right, and each text within its place."""

import gettext
import re
import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import BIN, ROOT, HomeTest, Screen, views

TABLES = {path.parts[-3]: gettext.GNUTranslations(path.open("rb"))._catalog
          for path in (BIN.parent / "share/locale").glob("*/LC_MESSAGES/sela-share.mo")}
ENGLISH = TABLES["en"]
LANGUAGES = sorted(TABLES)


def keys_in_source():
    """Every text in quotes inside a call of `localized` or `localizedString`."""
    for path in (ROOT / "src").rglob("*.cpp"):
        for call in re.findall(r'\blocalized(?:String)?\(([^;]*?)\)', path.read_text()):
            yield from re.findall(r'"((?:[^"\\]|\\.)+)"', call)


class Tables(unittest.TestCase):
    def test_every_table_has_every_key(self):
        self.assertEqual(set(keys_in_source()), set(ENGLISH) - {""})
        self.assertGreaterEqual(len(LANGUAGES), 11)
        for language, table in TABLES.items():
            self.assertEqual(set(table), set(ENGLISH), language)
            self.assertIn(f"Language: {language}\n", table[""] + "\n")

    def test_texts_are_texts(self):
        for language, table in TABLES.items():
            for key, text in table.items():
                if not key:
                    continue
                self.assertEqual(text.count("%@"), ENGLISH[key].count("%@"), (language, key))
                self.assertEqual(text.count("%"), text.count("%@"), (language, key))
                self.assertTrue(text == text.strip() and text.isprintable() or language == "ar", (language, key))
                self.assertEqual(text.count("\u2068"), text.count("\u2069"), (language, key))
                if language != "en":
                    self.assertNotEqual(text, ENGLISH[key], (language, key))


class Screens(HomeTest):
    """The screens in every language, walked once for each size of screen."""

    PHONE, TABLET = "320x568", "768x1024"
    STEPS = [("card",), ("keypad", "--tap", "albumButton"), ("albums", "--type", "123456"),
             ("unfolded", "--tap", "showChildButton:1"), ("password", "--tap", "showChildButton:2"),
             ("result1", "--tap", "backButton", "--tap", "row:1:1", "--tap", "addButton", "--wait", "0.65"),
             ("result2", "--wait", "0.3"), ("result3", "--wait", "0.3"), ("result4", "--wait", "0.3")]

    def setUp(self):
        super().setUp()
        self.provision()
        self.files = [self.write(f"{i}.jpg", b"\xff\xd8 no real picture") for i in range(12)]

    def walk(self, language, size=PHONE, files=None, steps=STEPS, status=3):
        """The trees of the screens by name."""
        folder = self.home / f"{language}-{size}-{len(files or self.files)}"
        folder.mkdir()
        arguments = []
        for name, *steps_before in steps:
            arguments += [*steps_before, "--tree", folder / name]
        self.run_program("sela-share", "--headless", "--screen", size, *arguments, *(files or self.files),
                         environment={"LANGUAGE": language}, expect=status)
        return {name: Screen(folder / name) for name, *_ in steps}

    def assert_texts_fit(self, language, screens):
        for name, screen in screens.items():
            for view in views(screen.root):
                self.assertFalse(view.get("truncated") and not view["hidden"], (language, name, view.get("text")))
            if name in ("keypad", "albums", "password"):
                width = screen.root["frame"][2]
                scale = width / (375 if width < 768 else 768)
                self.assertGreaterEqual(screen.view("titleLabel")["font"]["size"], 14 * scale, (language, name))

    def test_every_text_fits(self):
        def look(language):
            table = TABLES[language]
            album = table["Default Album"]
            walks = [self.walk(language, status=0), self.walk(language, self.TABLET, steps=self.STEPS[:5]),
                     self.walk(language, files=self.files[:1], steps=self.STEPS[:1])]
            for screens in walks:
                self.assert_texts_fit(language, screens)
            many, _, one = walks
            self.assertEqual(many["card"].view("albumButton")["text"],
                             table["Add xxx files to xxx"].replace("%@", "12", 1).replace("%@", album, 1))
            self.assertEqual(one["card"].view("albumButton")["text"],
                             table["Add 1 file to xxx"].replace("%@", album))
            self.assertEqual(many["keypad"].view("titleLabel")["text"], table["Input Passcode"])
            self.assertEqual(many["albums"].view("titleLabel")["text"], table["Pick Album"])
            for number in range(1, 5):  # how far the saves are depends on the machine
                self.assertIn(many[f"result{number}"].view("resultLabel")["text"],
                              [table["Added!"], table["Adding..."], table["Done"]])

        self.each(look)

    def test_the_message_without_a_catalogue_fits(self):
        self.settings.unlink()

        def look(language):
            screen = self.walk(language, steps=[("message", "--tap", "albumButton")])["message"]
            self.assertIn(TABLES[language]["Please launch the main Sela app first."], screen.shown_texts())
            self.assert_texts_fit(language, {"message": screen})

        self.each(look)

    def test_arabic_mirrors_what_follows_reading_and_nothing_else(self):
        steps = self.STEPS[:5]
        english, arabic = (self.walk(language, steps=steps) for language in ("en", "ar"))
        follows = {"albumButton", "disclosureIcon", "cancelButton", "addButton", "backButton", "thumbnailView",
                   "showChildButton", "imageView", "lockIcon"}
        seen = set()
        for name in english:
            pairs = zip(views(english[name].root), views(arabic[name].root), strict=True)
            for view, other in pairs:
                if view["class"] == "UILabel" or not view["name"]:
                    continue
                x, y, width, height = view["frame"]
                expected = 320 - x - width if view["name"] in follows else x
                self.assertAlmostEqual(other["frame"][0], expected, 2, (name, view["name"]))
                self.assertEqual(other["frame"][1:], [y, width, height], (name, view["name"]))
                seen.add(view["name"])
        self.assertLessEqual(follows | {"button1", "button9", "indicator1", "imageView1"}, seen)

    def each(self, look):
        """The programs wait for animations most of the time, so several run at once."""
        with ThreadPoolExecutor(6) as pool:
            for result in [pool.submit(look, language) for language in LANGUAGES]:
                result.result()
