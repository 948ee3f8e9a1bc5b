"""Saving beside the copying tools: by the store alone, which is what Add does, and by the whole run of sela-share.

In most whole runs the screens' animations and the 1.5 seconds that "Done" is shown pass on a fast clock.
"""

import contextlib
import os
import pathlib
import shutil
import subprocess

from measuring import SAMPLES, Row

EATMYDATA = "/usr/lib/x86_64-linux-gnu/libeatmydata.so"  # makes every flush return at once


def make_file(path, size, head):
    """A file that begins like `head` and goes on with bytes that do not compress."""
    with open(path, "wb") as file:
        file.write(head)
        block = os.urandom(1 << 20)
        while file.tell() < size:
            file.write(block[:size - file.tell()])


def box(kind, size):
    """The header of an MP4 box that readers skip."""
    return (1).to_bytes(4, "big") + kind + (size + 16).to_bytes(8, "big")


class Copies:
    """The same files saved by sela-share and copied by the peers, each time from nothing."""

    def __init__(self, bench, files, folder=None):
        self.bench = bench
        self.files = files
        self.target = (folder or bench.folder) / "copies"

    def clear(self):
        self.bench.provision()
        shutil.rmtree(self.target, ignore_errors=True)
        self.target.mkdir()
        os.sync()

    def ours(self, environment=None):
        return self.checked(lambda: self.bench.run_ours(self.bench.share(self.files), environment))

    def store(self, environment=None):
        return self.checked(lambda: self.bench.run([self.bench.bin / "save-files", *self.files], environment))

    def checked(self, run):
        self.clear()
        measured = run()
        if len(self.bench.saved_files()) != len(self.files):
            raise RuntimeError("not every file was saved")
        return measured

    def peer(self, command):
        self.clear()
        return self.bench.run(["sh", "-c", command, "peer", *self.files, self.target])


def big_video(bench):
    path = bench.folder / "big.mp4"
    video = (SAMPLES / "1080p.mp4").read_bytes()
    make_file(path, 2 << 30, video + box(b"free", (2 << 30) - len(video) - 16))
    copies = Copies(bench, [path])
    unflushed = bench.environment | {"LD_PRELOAD": EATMYDATA}
    whole, store, store_unflushed, cp, cp_sync = bench.alternate(
        lambda: copies.ours(bench.hurried()), copies.store, lambda: copies.store(unflushed),
        lambda: copies.peer('cp "$1" "$2"'), lambda: copies.peer('cp "$1" "$2" && sync "$2"/*'), most=3)
    path.unlink()
    yield Row("save one 2 GiB video, before the flush", store_unflushed.milliseconds, "ms", "cp", cp.milliseconds,
              "at most 0.75", 0.75)
    yield Row("save one 2 GiB video, flushed", store.milliseconds, "ms", "cp, sync", cp_sync.milliseconds,
              "at most 1.0", 1.0)
    yield Row("2 GiB video, whole run with its thumbnail", whole.milliseconds, "ms", "cp, sync", cp_sync.milliseconds)


def photos(bench):
    count = 1000
    head = (SAMPLES / "medium.jpg").read_bytes()
    folder = bench.folder / "photos"
    folder.mkdir()
    files = [folder / f"IMG_{number:04}.JPG" for number in range(count)]
    for file in files:
        make_file(file, 3_000_000, head[:2_900_000])
    copies = Copies(bench, files)
    whole, store, cp_sync, rsync, least = bench.alternate(
        lambda: copies.ours(bench.hurried()), copies.store, lambda: copies.peer('cp "$@" && sync -f "$1"'),
        lambda: copies.peer('rsync -W --fsync "$@"'), lambda: copies.peer(f'"{bench.bin}/recorded-copies" "$@"'), most=3)
    shutil.rmtree(folder)
    yield Row("save 1,000 photos of 3 MB, each recorded", store.milliseconds, "ms", "cp, one sync",
              cp_sync.milliseconds, "at most 1.5", 1.5)
    yield Row("save 1,000 photos of 3 MB, each recorded", store.milliseconds, "ms", "rsync -W --fsync",
              rsync.milliseconds, "ahead", 1.0)
    yield Row("save 1,000 photos of 3 MB, each recorded", store.milliseconds, "ms",
              "least calls that record each file once it is flushed", least.milliseconds)
    yield Row("1,000 photos of 3 MB, whole run with thumbnails", whole.milliseconds, "ms", "cp, one sync",
              cp_sync.milliseconds)
    yield Row("peak memory of sela-share, 1,000 photos", whole.mebibytes, "MiB", "limit", 48, "under", 1.0)


def small_images(bench):
    count = 2000
    folder = bench.folder / "small"
    folder.mkdir()
    head = pathlib.Path(SAMPLES / "baseline.jpg").read_bytes()
    files = [folder / f"small-{number:04}.jpg" for number in range(count)]
    for file in files:
        make_file(file, len(head) + 2000, head)
    copies = Copies(bench, files)
    loop = ('for target; do :; done; db="$target.sqlite3"; rm -f "$db"; '
            'sqlite3 "$db" "CREATE TABLE items(name TEXT PRIMARY KEY, album TEXT)"; '
            'for file; do [ "$file" = "$target" ] && break; cp "$file" "$target"; '
            'sqlite3 "$db" "INSERT INTO items VALUES(\'${file##*/}\', \'Trips\')"; done')
    ours, peer = bench.alternate(copies.ours, lambda: copies.peer(loop), most=3)
    shutil.rmtree(folder)
    yield Row("2,000 small images in one request, whole run", ours.milliseconds, "ms", "cp, sqlite3 insert each",
              peer.milliseconds, "ahead", 1.0)


@contextlib.contextmanager
def home_on_btrfs(bench, gibibytes):
    """A file system in a file on which files can share extents (reflinks); None where it cannot be mounted."""
    image, folder = bench.folder / "btrfs.image", bench.folder / "btrfs"
    folder.mkdir()
    with open(image, "wb") as file:
        file.truncate(gibibytes << 30)
    quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    commands = [["mkfs.btrfs", "-q", image], ["mount", "-o", "loop", image, folder]]
    mounted = shutil.which("mkfs.btrfs") and all(subprocess.run(each, **quiet).returncode == 0 for each in commands)
    home, environment = bench.home, bench.environment
    try:
        if mounted:
            bench.home = folder / "home"
            bench.environment = environment | {"HOME": str(bench.home), "XDG_DATA_HOME": str(bench.home / "data"),
                                               "XDG_CONFIG_HOME": str(bench.home / "config")}
        yield folder if mounted else None
    finally:
        bench.home, bench.environment = home, environment
        if mounted:
            subprocess.run(["umount", folder], check=True)
        image.unlink()
        folder.rmdir()


def shared_video(bench):
    with home_on_btrfs(bench, 4) as folder:
        if not folder:
            print("no btrfs can be mounted: its rows are left out", flush=True)
            return
        path = folder / "big.mp4"
        make_file(path, 1 << 30, (SAMPLES / "1080p.mp4").read_bytes())
        copies = Copies(bench, [path], folder)
        store, shared, copied = bench.alternate(
            copies.store, lambda: copies.peer('cp "$1" "$2" && sync "$2"/*'),
            lambda: copies.peer('cp --reflink=never "$1" "$2" && sync "$2"/*'))
        path.unlink()
    yield Row("save one 1 GiB video on btrfs, flushed", store.milliseconds, "ms", "cp, sync", shared.milliseconds)
    yield Row("save one 1 GiB video on btrfs, flushed", store.milliseconds, "ms", "cp --reflink=never, sync",
              copied.milliseconds, "ahead", 1.0)


def huge_video(bench):
    """A sparse source: nothing is read from the disk, but every byte is written."""
    if not bench.long:
        return
    path = bench.folder / "huge.mp4"
    with open(path, "wb") as file:
        file.truncate(20 << 30)
    bench.provision()
    measured = bench.run_ours(bench.share([path]))
    bench.provision()
    path.unlink()
    yield Row("peak memory of sela-share, a video of 20 GiB", measured.mebibytes, "MiB", "limit", 48, "under", 1.0)


def rows(bench):
    for part in (big_video, shared_video, photos, small_images, huge_video):
        yield from part(bench)
