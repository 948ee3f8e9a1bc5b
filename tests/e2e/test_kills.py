"""Shares and imports that are killed at random moments lose nothing. SELA_KILLS sets how many (300)."""

import os
import random
import shutil
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
        return [path for path in (self.home / "into").rglob("*") if path.is_file() and not path.name.startswith(".sela-import")]

    def test_two_shares_and_an_import_killed_at_random_moments(self):
        seed = int(os.environ.get("SELA_SEED", time.time()))
        print("SELA_SEED =", seed)
        chance = random.Random(seed)
        self.provision()
        contents = {}  # by the name under which it is shared: each content is shared once
        recorded = set()
        for round_number in range(ROUNDS):
            shares = []
            for share in ("a", "b"):
                files = []
                for size in (10, 300_000, 2 * 1024 * 1024 + 1):
                    name = f"{round_number}-{share}-{size}.jpg"
                    contents[name] = {chance.randbytes(16) + os.urandom(size - 10)}
                    files.append(self.write("source/" + name, next(iter(contents[name]))))
                shares.append(self.start("sela-share", "--headless", "--tap-now", "addButton", *files))
            running = [*shares, self.start("sela-vault", "import", "--into", self.home / "into")]
            for process in chance.sample(running, len(running)):
                time.sleep(chance.uniform(0, 0.5))
                process.send_signal(signal.SIGKILL)
                process.wait()
            self.assert_recorded_files_are_whole(contents)
            recorded |= {entry["preferredName"] for entry in self.ledger().values()}
            shutil.rmtree(self.home / "source")
        self.vault("import", "--into", self.home / "into")
        self.assertEqual(self.ledger(), {})
        placed = {}
        for path in self.placed():
            placed.setdefault(path.name, []).append(path)
        self.assertLessEqual(recorded, set(placed), "an entry went without its file")
        self.assertGreater(len(recorded), ROUNDS // 4, "the kills left nothing to look at")
        for name, paths in placed.items():
            self.assertIn(name, contents, "a file was imported twice")
            self.assertEqual(len(paths), 1)
            self.assertIn(paths[0].read_bytes(), contents[name], name)


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
