"""Shares and imports that are killed at random moments lose nothing. SELA_KILLS sets how many (300)."""

import os
import random
import signal
import subprocess
import time
import unittest

from harness import BIN, HomeTest

ROUNDS = int(os.environ.get("SELA_KILLS", "300")) // 3


class Kills(HomeTest):
    def start(self, name, *arguments):
        return subprocess.Popen([BIN / name, *map(os.fsencode, arguments)], env=self.environment,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def placed(self):
        return [path for path in (self.home / "into").rglob("*") if path.is_file() and path.name != ".sela-import"]

    def test_two_shares_and_an_import_killed_at_random_moments(self):
        seed = int(os.environ.get("SELA_SEED", time.time()))
        print("SELA_SEED =", seed)
        chance = random.Random(seed)
        self.provision()
        contents = {name: {os.urandom(size)} for name, size in
                    [("a.jpg", 10), ("b.jpg", 300_000), ("c.mov", 2 * 1024 * 1024 + 1)]}
        files = [self.write(name, next(iter(content))) for name, content in contents.items()]
        add = ["--headless", "--tap-now", "addButton", *files]
        for _ in range(ROUNDS):
            running = [self.start("sela-share", *add), self.start("sela-share", *add),
                       self.start("sela-vault", "import", "--into", self.home / "into")]
            recorded = self.ledger()
            for process in chance.sample(running, len(running)):
                time.sleep(chance.uniform(0, 0.9))
                process.send_signal(signal.SIGKILL)
                process.wait()
            self.assert_recorded_files_are_whole(contents)
            still = self.ledger()
            imported = {path.read_bytes() for path in self.placed()}
            for key, entry in recorded.items():
                if key not in still:
                    self.assertLessEqual(contents[entry["preferredName"]], imported, "an entry went without its file")
        # A share that completed is recorded three times over; all of it is imported, once.
        before = len(self.placed())
        waiting = len(self.ledger())
        self.add(*files)
        self.vault("import", "--into", self.home / "into")
        self.assertEqual(self.ledger(), {})
        # An entry whose place was noted before the last kill may have its file there already.
        self.assertIn(len(self.placed()) - before, (waiting + len(files), waiting + len(files) - 1))
        for path in self.placed():
            name = path.name.split(" (")[0].split(".")[0]
            original = next(key for key in contents if key.startswith(name))
            self.assertIn(path.read_bytes(), contents[original], path)


class AtOnce(HomeTest):
    def test_ten_shares_and_imports_at_once_lose_nothing(self):
        self.provision()
        expected = {}
        shares = []
        for i in range(10):
            content = os.urandom(100_000 + i)
            expected[f"{i}.jpg"] = content
            shares.append(subprocess.Popen(
                [BIN / "sela-share", "--headless", "--tap", "addButton", self.write(f"{i}.jpg", content)],
                env=self.environment, stderr=subprocess.DEVNULL))
        while any(share.poll() is None for share in shares):
            self.vault("import", "--into", self.home / "into")
        self.assertEqual([share.returncode for share in shares], [0] * 10)
        self.vault("import", "--into", self.home / "into")
        placed = {path.name: path.read_bytes() for path in (self.home / "into/vault/Default Album").iterdir()}
        self.assertEqual(placed, expected)


if __name__ == "__main__":
    unittest.main()
