"""Disks that are full or read-only, and files that change, as the programs meet them."""

import os
import pathlib
import resource
import subprocess
import unittest

from harness import HomeTest


def can_mount():
    probe = subprocess.run(["unshare", "--mount", "true"], capture_output=True)
    return os.geteuid() == 0 and probe.returncode == 0


class Faults(HomeTest):
    def test_a_file_size_limit_is_an_error_of_that_file(self):
        self.provision()
        result = self.add(self.write("big.mov", os.urandom(3_000_000)),
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
        result = self.add(small, big)
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertEqual([entry["preferredName"] for entry in self.ledger().values()], ["small.jpg"])
        self.assertEqual(len(list(self.items.iterdir())), 1)

    @unittest.skipUnless(can_mount(), "mounting needs root")
    def test_a_read_only_container_is_left_as_it_is(self):
        self.provision()
        self.mount("--bind", self.container, self.container)
        self.mount("-o", "remount,ro,bind", self.container)
        result = self.add(self.write("a.jpg", b"x"))
        self.assertIn("saveItem, error: failed to create stream", result.stderr)
        self.assertEqual(self.ledger(), {})

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

    def mount(self, *arguments):
        subprocess.run(["mount", *map(str, arguments)], check=True)
        target = str(arguments[-1])
        self.addCleanup(subprocess.run, ["umount", target], capture_output=True)


if __name__ == "__main__":
    unittest.main()
