"""The programs on full or read-only disks, and with files that change."""

import contextlib
import os
import pathlib
import resource
import shutil
import sqlite3
import subprocess
import time
import unittest

from harness import HomeTest


def can_mount():
    probe = subprocess.run(["unshare", "--mount", "true"], capture_output=True)
    return os.geteuid() == 0 and probe.returncode == 0


class Faults(HomeTest):
    def test_a_file_size_limit_is_an_error_of_that_file(self):
        self.provision()
        result = self.add(self.write("big.mov", os.urandom(3_000_000)), expect=1,
                          preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1_000_000, 1_000_000)))
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertNotIn("copyItem", result.stderr)
        self.assertEqual(self.ledger(), {})
        self.assertEqual(list(self.items.iterdir()), [])

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_a_full_disk_is_told_before_a_byte_is_copied(self):
        self.provision()
        small, big = self.write("small.jpg", os.urandom(1000)), self.write("big.mov", os.urandom(3_000_000))
        self.mount("-t", "tmpfs", "-o", "size=1m,mode=700", "tmpfs", self.items)
        result = self.add(small, big, expect=1)
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertEqual(self.ledger_values("preferredName"), ["small.jpg"])
        self.assertEqual(len(list(self.items.iterdir())), 1)

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_a_read_only_container_is_left_as_it_is(self):
        self.provision()
        self.mount("--bind", self.container, self.container)
        self.mount("-o", "remount,ro,bind", self.container)
        result = self.add(self.write("a.jpg", b"x"), expect=1)
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertEqual(self.ledger(), {})
        self.assertIn(f"{self.items}: Read-only file system\n", self.vault("doctor", expect=1).stdout)

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_an_import_goes_to_another_disk(self):
        self.provision()
        self.add(self.write("a.jpg", b"content"))
        into = pathlib.Path(self.home / "into")
        into.mkdir()
        self.mount("-t", "tmpfs", "tmpfs", into)
        self.vault("import", "--into", into)
        self.assertEqual((into / "vault/Default Album/a.jpg").read_bytes(), b"content")
        self.assertEqual(self.ledger(), {})
        self.assertEqual(list(self.items.iterdir()), [])

    def mount_image(self, mebibytes, make, place):
        """Mounts a file system in a file."""
        image = self.home / "image"
        with open(image, "wb") as file:
            file.truncate(mebibytes * 2**20)
        subprocess.run([*make, image], check=True, stdout=subprocess.DEVNULL)
        place.mkdir(parents=True)
        self.mount("-o", "loop", image, place)

    @unittest.skipUnless(can_mount() and shutil.which("mkfs.ext4"), "mounting needs root")
    def test_a_disk_that_fills_up_while_files_are_added(self):
        self.mount_image(8, ["mkfs.ext4", "-q", "-F"], self.home / "data/sela")
        self.check_that_room_ends()

    @unittest.skipUnless(can_mount() and shutil.which("mkfs.btrfs"), "mounting needs root")
    def test_a_quota_that_is_used_up_while_files_are_added(self):
        disk, place = self.home / "disk", self.home / "data/sela"
        self.mount_image(256, ["mkfs.btrfs", "-q"], disk)
        for command in (["quota", "enable", disk], ["subvolume", "create", disk / "limited"],
                        ["qgroup", "limit", "4M", disk / "limited"]):
            subprocess.run(["btrfs", *command], check=True, stdout=subprocess.DEVNULL)
        place.mkdir(parents=True)
        self.mount("--bind", disk / "limited", place)
        self.check_that_room_ends()

    def check_that_room_ends(self):
        """Adds files until the disk is full, then checks the stored files and that adding works again."""
        self.provision()
        contents, files = self.many_files(30, 300_000)
        result = self.add(*files, expect=1)
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        recorded = self.ledger()
        self.assertGreater(len(recorded), 5)
        self.assertLess(len(recorded), 30)
        self.assert_recorded_files_are_whole(contents)
        # An import within the same file system needs no space, and frees some.
        self.vault("import", "--into", self.home / "data/sela/into")
        self.assertEqual(self.ledger(), {})
        shutil.rmtree(self.home / "data/sela/into")
        self.add(files[-1])
        self.assertEqual(len(self.ledger()), 1)

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_settings_on_a_full_disk_keep_what_they_hold(self):
        config = self.home / "config/sela"
        config.mkdir(parents=True)
        self.mount("-t", "tmpfs", "-o", "size=1m,mode=700", "tmpfs", config)
        self.provision()
        contents = {"a.jpg": {b"a"}, "b.jpg": {b"b"}}
        self.add(self.write("a.jpg", b"a"))
        filling = config / "filling"
        with open(filling, "wb", buffering=0) as file, contextlib.suppress(OSError):
            while True:
                file.write(bytes(4096))
        result = self.add(self.write("b.jpg", b"b"), expect=1)
        self.assertIn("saveItem", result.stderr)
        filling.unlink()
        self.assertIn("a.jpg", self.ledger_values("preferredName"))
        self.assert_recorded_files_are_whole(contents)
        self.add(self.home / "b.jpg")
        self.assertIn("b.jpg", self.ledger_values("preferredName"))

    def start_adding(self, *files):
        """A share that has begun: its first file is in Items."""
        process = self.start_share("--tap-now", "addButton", *files, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + 30
        while process.poll() is None and time.monotonic() < deadline and not any(self.items.iterdir()):
            time.sleep(0.001)
        return process

    def many_files(self, count=20, size=1_000_000):
        contents = {f"{i}.jpg": {os.urandom(size)} for i in range(count)}
        return contents, [self.write(name, next(iter(content))) for name, content in contents.items()]

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_a_disk_that_becomes_read_only_under_way(self):
        self.provision()
        self.mount("-t", "tmpfs", "-o", "mode=700", "tmpfs", self.items)
        contents, files = self.many_files()
        process = self.start_adding(*files)
        for attempt in range(1000):  # refused while a file is open for writing
            if subprocess.run(["mount", "-o", "remount,ro", self.items], capture_output=True).returncode == 0:
                break
        self.assertEqual(process.wait(60), 1)
        self.assertLess(len(self.ledger()), 20)
        self.assert_recorded_files_are_whole(contents)

    def test_a_container_that_is_removed_under_way(self):
        self.provision()
        _, files = self.many_files()
        process = self.start_adding(*files)
        shutil.rmtree(self.container)
        self.assertEqual(process.wait(60), 1)
        self.assertLess(len(self.ledger()), 20)
        self.assertNotEqual(self.vault("import", "--into", self.home / "into", expect=None).returncode, 0)
        self.vault("init")
        before = len(self.ledger())
        self.add(files[0])
        self.assertEqual(len(self.ledger()), before + 1)

    def test_settings_that_are_replaced_or_locked_under_way(self):
        self.provision()
        contents, files = self.many_files()
        process = self.start_adding(*files)
        other = sqlite3.connect(self.settings, isolation_level=None, timeout=30)
        other.execute("BEGIN IMMEDIATE")
        time.sleep(1)
        other.execute("ROLLBACK")
        other.close()
        self.assertEqual(process.wait(60), 0)
        self.assertEqual(len(self.ledger()), 20)
        self.assert_recorded_files_are_whole(contents)
        copy = self.home / "copy"
        shutil.copy(self.settings, copy)
        process = self.start_adding(*files)
        os.replace(copy, self.settings)
        self.assertIn(process.wait(60), (0, 1))
        self.assert_recorded_files_are_whole(contents)
        self.assertGreaterEqual(len(self.ledger()), 20)
        self.add(files[0])

    def mount(self, *arguments):
        subprocess.run(["mount", *map(str, arguments)], check=True)
        target = str(arguments[-1])
        self.addCleanup(subprocess.run, ["umount", target], capture_output=True)
