"""Far more than is ever shared at once. SELA_LOAD=long takes the full numbers and the 20 GiB file (minutes, and 40 GiB
of disk)."""

import json
import os
import pathlib
import re
import sqlite3
import subprocess
import time
import unittest

from harness import BIN, FAST_CLOCK, ROOT, HomeTest

LONG = os.environ.get("SELA_LOAD") == "long"
ATTACHMENTS = 5000 if LONG else 200
EXTENSIONS = 32 if LONG else 8
ALBUMS = 100_000
ENTRIES = 50_000
HUGE = 20 * 2**30


class Load(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.environment |= {"LD_PRELOAD": str(FAST_CLOCK), "SELA_CLOCK_SPEED": "20"}

    def run_measured(self, program, *arguments, stdin=subprocess.DEVNULL):
        """Runs a program to its end, checks its status, and returns its peak memory in MiB. Its output goes nowhere."""
        process = subprocess.Popen([BIN / program, *map(os.fsencode, arguments)], env=self.environment, stdin=stdin,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        begin = time.monotonic()
        peak = 0
        while process.poll() is None:
            # Not from the rusage at the end, which includes this process before the exec.
            found = re.search(r"VmHWM:\s*(\d+) kB", pathlib.Path(f"/proc/{process.pid}/status").read_text())
            peak = int(found[1]) / 1024 if found else peak
            time.sleep(0.02)
        self.assertEqual(process.returncode, 0)
        print(f"{self.id().split('.')[-1]}: {program} {time.monotonic() - begin:.1f} s, peak {peak:.0f} MiB", flush=True)
        return peak

    def test_thousands_of_attachments_in_one_request(self):
        files = [self.write(f"source/{i}.jpg", b"%d" % i) for i in range(ATTACHMENTS)]
        peak = self.run_measured("sela-share", "--headless", "--tap-now", "addButton", *files)
        self.assertLess(peak, 120)
        ledger = self.ledger()
        self.assertEqual([entry["preferredName"] for entry in ledger.values()], [f"{i}.jpg" for i in range(ATTACHMENTS)])
        for entry in ledger.values():
            self.assertEqual((self.items / entry["fileName"]).read_bytes() + b".jpg", entry["preferredName"].encode())
        self.run_measured("sela-vault", "import", "--into", self.home / "into")
        self.assertEqual(len(list((self.home / "into/vault/Default Album").iterdir())), ATTACHMENTS)
        self.assertEqual(self.ledger(), {})

    def test_many_extensions_and_imports_at_once(self):
        contents = {f"{i}-{j}.jpg": os.urandom(100_000 + i) for i in range(EXTENSIONS) for j in range(3)}
        files = [self.write(name, content) for name, content in contents.items()]
        shares = [self.start_share("--tap-now", "addButton", *files[i:i + 3]) for i in range(0, len(files), 3)]
        while any(share.poll() is None for share in shares):
            self.vault("import", "--into", self.home / "into")
        logs = [share.communicate()[1].decode() for share in shares]
        self.assertEqual([share.returncode for share in shares], [0] * EXTENSIONS)
        self.assertEqual([line for log in logs for line in log.splitlines() if "error" in line], [])
        self.vault("import", "--into", self.home / "into")
        placed = {path.name: path.read_bytes() for path in (self.home / "into/vault/Default Album").iterdir()}
        self.assertEqual(placed, contents)

    def test_a_huge_picture_without_a_file(self):
        with open(ROOT / "build/samples/stripes.png", "rb") as picture:
            peak = self.run_measured("sela-share", "--headless", "--tap-now", "addButton", "-", stdin=picture)
        self.assertLess(peak, 48)
        [entry] = self.ledger().values()
        self.assertGreater((self.items / entry["fileName"]).stat().st_size, 24 * 2**20)

    def test_a_huge_catalogue(self):
        albums = [{"namePath": [f"Album {i // 10}"] + ([f"Child {i}"] if i % 10 else []), "fake": False}
                  for i in range(ALBUMS)]
        self.run_measured("sela-vault", "publish", self.write("huge.json", json.dumps(albums).encode()))
        peak = self.run_measured("sela-share", "--headless", "--tap", "albumButton", "--type", "123456", "--tap",
                                 "showChildButton:9000", "--tap", "row:9000:9", "--tap", "addButton",
                                 self.write("a.jpg", b"x"))
        self.assertLess(peak, 250)
        self.assertEqual([entry["albumNames"] for entry in self.ledger().values()], [["Album 9000", "Child 90009"]])

    def test_a_long_ledger(self):
        ledger = {f"Trips-normal{i}.5a.jpg": {"fileName": f"{i}.5a.jpg", "albumNames": ["Trips"], "fake": False,
                                              "preferredName": "a.jpg"} for i in range(ENTRIES)}
        with sqlite3.connect(self.settings) as connection:
            connection.execute("INSERT INTO settings VALUES('sharedItems', 'data', ?)", [json.dumps(ledger).encode()])
        peak = self.run_measured("sela-share", "--headless", "--tap-now", "addButton", self.write("new.jpg", b"x"))
        self.assertLess(peak, 120)
        after = self.ledger()
        self.assertEqual(len(after), ENTRIES + 1)
        self.assertEqual({key: after[key] for key in ledger}, ledger)

    @unittest.skipUnless(LONG, "takes minutes and 20 GiB of disk")
    def test_a_huge_file(self):
        source = self.home / "huge.mov"
        with open(source, "wb") as file:
            for place in (0, HUGE // 2, HUGE - 5):
                file.seek(place)
                file.write(b"%5d" % (place % 100_000))
        peak = self.run_measured("sela-share", "--headless", "--tap-now", "addButton", source)
        self.assertLess(peak, 120)
        [entry] = self.ledger().values()
        copied = self.items / entry["fileName"]
        subprocess.run(["cmp", source, copied], check=True)
        self.assertEqual(copied.stat().st_size, HUGE)
        self.run_measured("sela-vault", "import", "--into", self.home / "into")
        self.assertEqual((self.home / "into/vault/Default Album/huge.mov").stat().st_size, HUGE)
