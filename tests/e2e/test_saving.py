"""Shared files reach the group and, by an import, their albums."""

import json
import os
import socket
import stat
import unittest

from harness import HomeTest

BLOCK = 2 * 1024 * 1024


class Saving(HomeTest):
    def test_files_arrive_byte_for_byte_and_are_imported(self):
        self.provision()
        contents = {"photo.jpg": os.urandom(BLOCK + 1), "video.mov": os.urandom(5), "song.MP3": os.urandom(BLOCK)}
        files = [self.write(name, content) for name, content in contents.items()]
        self.add(files[0], "file://" + files[1], files[2])
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

    def test_the_log_says_what_happens(self):
        self.provision()
        result = self.add(self.write("a.jpg", b"x" * 10))
        for line in ["getItemsCount count = 1", "loadThumbnails inputItems count = 1", "item[0]: fileName = a.jpg",
                     "item[0]: typeIdentifier = public.jpeg",
                     "loadThumbnails: failed to decode image fileName = a.jpg", "InputItems count = 1",
                     "copyItem: readBytes = 10, totalReadBytes = 10", "copyItem: readBytes = 0, totalReadBytes = 10"]:
            self.assertIn(line, result.stderr.splitlines())
        self.assertNotIn("Adding", result.stderr)

    def test_everything_made_is_for_the_user_alone(self):
        old = os.umask(0)
        self.addCleanup(os.umask, old)
        self.provision()
        self.add(self.write("a.jpg", b"x"))
        for top in (self.home / "data/sela", self.home / "config/sela"):
            for path in [top, *top.rglob("*")]:
                self.assertEqual(stat.S_IMODE(path.stat().st_mode) & 0o077, 0, path)

    def test_the_first_failure_ends_the_run_and_the_request_completes(self):
        self.provision()
        result = self.add(self.write("a.jpg", b"1"), self.write("b.txt", b"2"), self.write("c.jpg", b"3"))
        self.assertEqual([entry["preferredName"] for entry in self.ledger().values()], ["a.jpg"])
        self.assertIn("saveItem, error: Unsupported file", result.stderr)

    def test_an_empty_file_can_never_end(self):
        self.provision()
        result = self.add(self.write("a.jpg", b"1"), self.write("empty.jpg", b""), expect=4)
        self.assertIn("file 2 of 2", result.stderr)
        self.assertEqual(len(self.ledger()), 1)

    def test_without_add_the_request_is_cancelled_and_nothing_is_made(self):
        self.provision()
        self.share(self.write("a.jpg", b"1"), expect=3)
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
        os.symlink("nowhere", self.home / "dangling.jpg")
        for argument in [self.home / "missing.jpg", self.home, self.home / "fifo.jpg", self.home / "socket.jpg",
                         self.home / "dangling.jpg", "/dev/zero", "file://elsewhere/a.jpg", "https://a/b.jpg", ""]:
            result = self.add(good, argument, expect=64)
            self.assertIn("sela-share: ", result.stderr)
            self.assertEqual(self.ledger(), {}, argument)
        result = self.share("-", expect=64, input=b"no picture")
        self.assertIn("no picture", result.stderr)
        for options in [["--nonsense"], ["--screen", "12"], ["--scale", "x"], ["--type", "12a"], ["--tap"]]:
            self.share(*options, expect=64)

    def test_names_of_every_kind_survive(self):
        self.provision()
        names = [b"n" * 200 + b".jpg", b"a\nb.jpg", b"\xff\xfe.jpg", b"a-b %20c.jpg", "本😀.heic".encode(), b"\x1b[31m.png"]
        result = self.add(*[self.write(name, name) for name in names])
        self.assertEqual(len(result.stderr.splitlines()), len(result.stderr.split("\n")) - 1)
        self.assertNotIn("\x1b", result.stderr)
        recorded = self.ledger().values()
        self.assertEqual([entry["preferredName"] for entry in recorded],
                         [name.decode(errors="replace") for name in names])
        for entry, name in zip(recorded, names):
            self.assertEqual((self.items / entry["fileName"]).read_bytes(), name)

    def test_a_name_too_long_for_its_time_is_told_and_loses_nothing(self):
        self.provision()
        source = self.write(b"n" * 251 + b".jpg", b"x")
        result = self.add(source)
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertEqual(self.ledger(), {})
        self.assertTrue(os.path.exists(source))

    def test_without_a_group_nothing_is_made(self):
        source = self.write("a.jpg", b"x")
        result = self.add(source)
        self.assertIn("SharedItemManager, shared folder is nil", result.stderr)
        self.assertFalse((self.home / "data").exists())
        self.assertFalse((self.home / "config").exists())
        for command in (["publish", source], ["import", "--into", self.home / "into"]):
            self.assertIn("not provisioned", self.vault(*command, expect=1).stderr)

    def test_settings_that_are_no_database_are_left_as_they_are(self):
        self.provision()
        self.settings.write_bytes(b"not a database" * 200)
        result = self.add(self.write("a.jpg", b"x"))
        self.assertIn("saveItem: userDefaults is nil", result.stderr)
        self.assertEqual(self.settings.read_bytes(), b"not a database" * 200)
        for command in (["ledger"], ["albums"], ["import", "--into", self.home / "into"]):
            self.vault(*command, expect=1)

    def test_a_catalogue_that_is_wrong_is_not_published(self):
        self.provision()
        before = self.vault("albums").stdout
        for text in [b"", b"{}", b"[1]", b'[{"namePath":["A"]}]', b'[{"namePath":"A","fake":false}]', b"[\xff]"]:
            self.vault("publish", self.write("bad.json", text), expect=1)
        self.vault("publish", self.home / "missing.json", expect=1)
        self.assertEqual(self.vault("albums").stdout, before)

    def test_passcodes_never_come_from_an_argument_and_are_never_shown(self):
        self.provision(passcode="918273", decoy="645342")
        self.vault("publish", self.home / "catalogue.json", "--passcode", "111111", expect=64)
        shown = "".join(self.vault(*command).stdout for command in (["albums"], ["ledger"], ["ledger", "--json"]))
        for secret in ("918273", "645342", "2580"):
            self.assertNotIn(secret, shown)


if __name__ == "__main__":
    unittest.main()
