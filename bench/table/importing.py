"""Importing what was shared: thousands of items moved into their albums and removed from the ledger."""

import json
import shutil
import sqlite3

from measuring import GROUP, Row


class Group:
    """A group with so many small items in its ledger, made again for each run."""

    def __init__(self, bench, count):
        self.bench = bench
        self.count = count
        self.items = bench.home / "data/sela/groups" / GROUP / "Items"
        self.into = bench.folder / "into"

    def fill(self):
        self.bench.provision()
        shutil.rmtree(self.into, ignore_errors=True)
        ledger = {}
        for number in range(self.count):
            name = f"1700000000.{number}IMG_{number}.JPG"
            (self.items / name).write_bytes(b"x" * 100)
            ledger["Trips-normal" + name] = {"fileName": name, "albumNames": ["Trips"], "fake": False,
                                             "preferredName": f"IMG_{number}.JPG"}
        with sqlite3.connect(self.bench.home / "config/sela" / f"{GROUP}.sqlite3") as settings:
            settings.execute("INSERT OR REPLACE INTO settings VALUES('sharedItems', 'data', ?)",
                             (json.dumps(ledger).encode(),))
        settings.close()

    def ours(self):
        self.fill()
        measured = self.bench.run([self.bench.bin / "sela-vault", "import", "--into", self.into])
        if len(list((self.into / "vault/Trips").iterdir())) != self.count:
            raise RuntimeError("not every item was imported")
        return measured

    def moved(self):
        self.fill()
        self.into.mkdir()
        command = 'find "$1" -type f -exec mv -t "$2" {} + && sync "$2"'
        return self.bench.run(["sh", "-c", command, "peer", self.items, self.into])


def rows(bench):
    for count in (1_000, 10_000, 100_000):
        group = Group(bench, count)
        ours, moved = bench.alternate(group.ours, group.moved, most=1 if count == 100_000 else None)
        shutil.rmtree(group.into)
        each = (ours.milliseconds - moved.milliseconds) / count
        yield Row(f"import {count:,} items", ours.milliseconds, "ms", "mv, one sync", moved.milliseconds)
        yield Row(f"import {count:,} items, above the peer, each", each, "ms", "limit", 0.5, "at most", 1.0)
