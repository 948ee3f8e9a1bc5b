"""The layout and the look of the screens, compared with reviewed references: a line for each view
in screens/*.txt, pictures in screens/*.png. scripts/renew-screens writes both anew."""

import os
import pathlib
import re
import shutil
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import ROOT, HomeTest, Screen

REFERENCES = pathlib.Path(__file__).parent / "screens"
RENEW = os.environ.get("SELA_RENEW_SCREENS")
SIZES = ["320x568", "375x667", "414x896", "600x960", "667x375", "765x1100", "767x1024", "768x1024", "1024x768",
         "1024x1366"]
LANGUAGES = sorted(path.stem for path in (ROOT / "resources/strings").glob("*.po"))
CARD = [("card",)]
KEYPAD = [("keypad", "--tap", "albumButton")]
WALK = CARD + KEYPAD + [("albums", "--type", "123456", "--tap", "showChildButton:1"),
                        ("password", "--tap", "showChildButton:2", "--type", "25"),
                        ("unlocked", "--type", "80"),
                        ("adding", "--tap", "row:1:1", "--tap", "addButton")]
# The name of each walk, the arguments and the environment that it takes, how many files are shared, and its steps.
WALKS = ([(size, ["--screen", size], {}, 3, WALK) for size in SIZES]
         + [("rtl", [], {"LANGUAGE": "ar"}, 3, WALK), ("60x60", ["--screen", "60x60"], {}, 1, KEYPAD)]
         + [(f"files-{count}", [], {}, count, CARD) for count in (0, 1, 2, 3, 12)])
LOOKS = {"light": [], "dark": ["--appearance", "dark", "--scale", "2"], "contrast": ["--contrast", "high"], "rtl": []}


def lines(view, depth=0):
    """A view and what is in it, without what cannot be seen; lengths in points."""
    frame = view["frame"]
    if not view["name"] and frame[2] * frame[3] == 0:
        return
    words = [view["name"] or view.get("controller") or "-", view["class"], *(f"{round(n, 1):g}" for n in frame)]
    if "text" in view:
        words += [repr(view["text"]), "{size:g} {weight} {name}".format(**view["font"]).strip()]
    words += [str(view[key]) for key in ("image", "background") if key in view]
    words += [f"{key}={round(view[key], 2):g}" for key in ("alpha", "cornerRadius") if view.get(key, 1) != 1]
    words += [flag for flag in ("hidden", "truncated") if view.get(flag)]
    yield "  " * depth + " ".join(words)
    if not view["hidden"] and frame[2] * frame[3] > 0:
        for below in view["subviews"]:
            yield from lines(below, depth + 1)


class Screens(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.environment["SELA_REDUCED_MOTION"] = "1"
        self.files = [self.write(f"{i}.jpg", (ROOT / "build/samples/larger.png").read_bytes()) for i in range(12)]
        self.empty = self.write("empty.jpg", b"")

    def walk(self, name, arguments, environment, count, steps, option="--tree"):
        """Walks through the screens, and returns the file that the option writes for each."""
        files = {screen: self.home / f"{name}-{screen}.{option[2:]}" for screen, *_ in steps}
        for screen, *before in steps:
            arguments = [*arguments, *before, option, files[screen]]
        # The copy of an empty file never completes, so that "Adding..." stays.
        self.share(*arguments, *self.files[:count], *([self.empty] if steps == WALK else []), environment=environment,
                   expect=None)
        return files

    def each(self, look, walks):
        """The programs wait for one another's helpers much of the time, so several run at once."""
        with ThreadPoolExecutor(4) as pool:
            return list(pool.map(look, walks))

    def compare(self, name, text):
        reference = REFERENCES / (name + ".txt")
        if RENEW:
            reference.write_text(text)
        self.assertEqual(text.splitlines(), reference.read_text().splitlines(),
                         f"{name}: if it should be so, scripts/renew-screens makes it the reference")

    def test_layouts(self):
        def look(walk):
            return walk[0], "".join(f"{screen}\n" + "".join(line + "\n" for line in lines(Screen(file).root, 1))
                                    for screen, file in self.walk(*walk).items())

        for name, text in self.each(look, WALKS):
            with self.subTest(name):
                self.compare(name, text)

    def test_what_is_asked_for_first(self):
        shown = "titleLabel|indicator|keypadView|tableView|launchMainAppLabel"
        text = ""
        for catalogue, passcode in [("[]", ""), ("[]", "1"), ("[]", "1234"), ("[]", "12345"), ("[]", "123456"),
                                    ("[]", "1234567"), ("[]", "\u0661\u0662\u0663\u0664\u0665\u0666"), ("[{}]", "1234"), ("[{}]", "")]:
            self.put_setting("sharedAlbums", catalogue)
            self.put_setting("sharedPassword", passcode, "text")
            [file] = self.walk("first", [], {}, 1, KEYPAD).values()
            text += f"{catalogue} '{passcode}'\n" + "".join(
                line.strip() + "\n" for line in lines(Screen(file).root) if re.search(shown, line))
        self.compare("first", text)

    def test_texts_of_every_language_fit(self):
        def look(language):
            found = []
            for size, count, steps in ("320x568", 11, WALK), ("320x568", 1, CARD), ("768x1024", 11, WALK):
                for screen, file in self.walk(f"{language}-{size}-{count}", ["--screen", size], {"LANGUAGE": language},
                                              count, steps).items():
                    for line in lines(Screen(file).root):
                        self.assertNotIn("truncated", line, (language, size, screen))
                        if title := re.search(r"titleLabel UILabel .* (\S+) bold", line):
                            self.assertGreaterEqual(float(title[1]), 14 * 320 / 375, (language, size, screen))
                        if "UILabel" in line and size == "320x568":
                            found.append(f"{screen} {line.strip()}\n")
            return language, "".join(found)

        for language, text in self.each(look, LANGUAGES):
            with self.subTest(language):
                self.compare(language, text)

    @unittest.skipUnless(shutil.which("compare"), "needs ImageMagick")
    def test_pictures(self):
        def look(name):
            environment = {"LANGUAGE": "ar"} if name == "rtl" else {}
            return name, self.walk(name, LOOKS[name], environment, 3, WALK, "--snapshot")

        for name, files in self.each(look, LOOKS):
            for screen in ("card", "albums", "password"):
                file = files[screen]
                reference = REFERENCES / f"{screen}-{name}.png"
                if RENEW:
                    shutil.copy(file, reference)
                # Components that differ by 48 of 255 are visible; a mean difference of half a step is not.
                for measure, most in (["-fuzz", "19%", "-metric", "AE"], 30), (["-metric", "MAE"], 65):
                    result = subprocess.run(["compare", *measure, file, reference, "null:"], capture_output=True,
                                            text=True)
                    self.assertLess(float(result.stderr.split()[0]), most, (name, screen, measure))
