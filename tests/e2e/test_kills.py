"""Shares and imports that are killed at random moments lose nothing. SELA_KILLS sets how many (300)."""

import hashlib
import os
import random
import shutil
import signal
import subprocess
import time

from harness import BIN, FAST_CLOCK, HomeTest

KILLS = int(os.environ.get("SELA_KILLS", "300"))
SIZES = (10, 300_000, 2 * 1024 * 1024 + 1)
# The number of rounds after which everything is imported, checked and removed.
SEASON = 50


def digest(path):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").digest()


class Kills(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.fast = {**self.environment, "LD_PRELOAD": str(FAST_CLOCK), "SELA_CLOCK_SPEED": "100"}
        self.into = self.home / "into"
        self.digests = {}  # by the name under which a content is shared: each is shared once
        self.recorded = set()
        self.lengths = {"share": 1.0, "import": 0.1}  # seconds; updated with the measured ones
        self.killed = self.entries_seen = 0
        self.tail = os.urandom(max(SIZES))

    def begin(self, name, *arguments):
        return subprocess.Popen([BIN / name, *map(os.fsencode, arguments)], env=self.fast,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def begin_share(self, label):
        files = []
        for size in SIZES:
            name = f"{label}-{size}.jpg"
            content = (name.encode() + self.tail)[:size] if size > 10 else os.urandom(size)
            files.append(self.write("source/" + name, content))
            self.digests[name] = hashlib.sha256(content).digest()
        return self.begin("sela-share", "--headless", "--tap-now", "addButton", *files)

    def begin_import(self):
        return self.begin("sela-vault", "import", "--into", self.into)

    def kill(self, process, program):
        alive = process.poll() is None
        self.killed += alive
        # Most kills should happen while work is done, however busy the machine is.
        self.lengths[program] *= 1.01 if alive else 0.96
        process.send_signal(signal.SIGKILL)
        process.wait()

    def play_round(self, label, chance):
        """Two shares and, at some moment, an import, each killed at some moment of its run."""
        begin = time.monotonic()
        import_start = chance.uniform(0, self.lengths["share"])
        plan = [(chance.uniform(0, self.lengths["share"]), self.kill, self.begin_share(f"{label}-{name}"), "share")
                for name in ("a", "b")]
        plan.append((import_start, lambda: plan.append(
            (import_start + chance.uniform(0, self.lengths["import"]), self.kill, self.begin_import(), "import"))))
        while plan:
            moment, action, *arguments = plan.pop(plan.index(min(plan, key=lambda step: step[0])))
            time.sleep(max(0, begin + moment - time.monotonic()))
            action(*arguments)

    def look_at_the_ledger(self):
        entries = self.ledger().values()
        for entry in entries:
            self.assertEqual(digest(self.items / entry["fileName"]), self.digests[entry["preferredName"]], entry)
        self.recorded |= {entry["preferredName"] for entry in entries}

    def end_season(self):
        """Imports the rest, and checks that every entry seen was placed once and completely."""
        self.vault("import", "--into", self.into)
        self.assertEqual(self.ledger(), {})
        placed = [path for path in self.into.rglob("*") if path.is_file()]
        names = {path.name for path in placed}
        self.assertEqual(len(names), len(placed))
        self.assertLessEqual(self.recorded, names, "an entry went without its file")
        for path in placed:
            self.assertIn(path.name, self.digests, "a file was imported twice")
            self.assertEqual(digest(path), self.digests[path.name], path)
        self.entries_seen += len(self.recorded)
        print(f"{self.killed} kills, {self.entries_seen} entries", flush=True)
        self.recorded.clear()
        self.digests.clear()
        shutil.rmtree(self.into)
        for left in self.items.iterdir():
            left.unlink()

    def test_two_shares_and_an_import_killed_at_random_moments(self):
        seed = int(os.environ.get("SELA_SEED", time.time()))
        print("SELA_SEED =", seed, flush=True)
        chance = random.Random(seed)
        round_number = 0
        while self.killed < KILLS:
            self.play_round(round_number, chance)
            self.look_at_the_ledger()
            shutil.rmtree(self.home / "source")
            round_number += 1
            if round_number % SEASON == 0:
                self.end_season()
        self.end_season()
        self.assertGreater(self.entries_seen, KILLS // 8, "the kills left nothing to look at")
