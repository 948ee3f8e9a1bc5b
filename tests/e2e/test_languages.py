"""Every string table: complete, and its texts with the same placeholders as the English ones. The terminal is English."""

import errno
import gettext
import os
import re
import unittest

from harness import BIN, ROOT, HomeTest

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
        keys = set(keys_in_source())
        self.assertLessEqual(keys, set(ENGLISH))
        # The others are texts of errors: the system's, or ours.
        reasons = {os.strerror(number) for number in errno.errorcode}
        source = "".join(path.read_text() for path in (ROOT / "src").rglob("*.cpp"))
        self.assertEqual([key for key in set(ENGLISH) - keys - reasons if key and f'"{key}"' not in source], [])
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


class Terminal(HomeTest):
    @unittest.skipUnless(gettext.find("libc", "/usr/share/locale", ["de"]), "needs the C library's German texts")
    def test_a_terminal_is_told_in_english(self):
        told = self.share("missing.jpg", expect=64, environment={"LANGUAGE": "de"}).stderr
        self.assertIn("missing.jpg", told)
        self.assertIn("No such file or directory", told)
