"""Shared files reach the group and, by an import, their albums; what cannot be shared is told and changes nothing."""

import json
import os
import socket
import unittest

from harness import HomeTest

BLOCK = 2 * 1024 * 1024


class Saving(HomeTest):
    def test_files_arrive_byte_for_byte_and_are_imported(self):
        self.provision()
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
        self.assertEqual(json.loads(self.vault("ledger", "--json").stdout), ledger)
        self.assertIn("photo.jpg", self.vault("ledger").stdout)
        self.vault("import", "--into", self.home / "into")
        for name, content in contents.items():
            self.assertEqual((self.home / "into/vault/Default Album" / name).read_bytes(), content)
        self.assertEqual(self.ledger(), {})
        self.assertEqual(list(self.items.iterdir()), [])


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
        for argument in [*files, self.home, "/dev/zero", "file://elsewhere/a.jpg", "https://a/b.jpg", ""]:
            with self.subTest(argument):
                result = self.add(good, argument, expect=64, input=b"")
                self.assertIn("sela-share: ", result.stderr)
                self.assertEqual(self.ledger(), {})
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


if __name__ == "__main__":
    unittest.main()
