"""From the start of the process to what the user sees first."""

import os
import pathlib
import re
import shutil
import subprocess

from measuring import SAMPLES, Row


DROP_CACHES = pathlib.Path("/proc/sys/vm/drop_caches")


def preloading(bench, environment, library):
    """The environment of a program that ends once its first frame was sent to the display."""
    return bench.environment | environment | {"LD_PRELOAD": str(bench.bin / library)}


def first_frame(bench, name, environment):
    environment = preloading(bench, environment, "first-frame.so")
    bench.provision()
    file = SAMPLES / "baseline.jpg"
    window = bench.bin / "empty-window"
    ours, peer, text = bench.alternate(lambda: bench.run([bench.bin / "sela-share", file], environment),
                                       lambda: bench.run([window], environment),
                                       lambda: bench.run([window, "Add 1 file to Trips"], environment))
    yield Row(f"start to first frame, {name}", ours.milliseconds, "ms", "empty Qt window", peer.milliseconds)
    yield Row(f"start to first frame, {name}", ours.milliseconds, "ms", "Qt window with one text",
              text.milliseconds)
    yield Row(f"memory at the first frame, {name}", ours.mebibytes - peer.mebibytes, "MiB more",
              "15 MiB above an empty Qt window", 15, "at most", 1.0)


def opened(bench, command, environment):
    """How many files, and how many of them libraries, a program opens by its first frame."""
    log = bench.folder / "opened"
    preload = environment["LD_PRELOAD"]
    traced = {name: value for name, value in environment.items() if name != "LD_PRELOAD"}
    bench.run(["strace", "-f", "-E", f"LD_PRELOAD={preload}", "-e", "trace=open,openat", "-o", log, *command], traced)
    files = {match[1] for match in re.finditer(r'open(?:at)?\(.*?"(.*?)".*\) = \d', log.read_text())}
    return len(files), sum(".so" in file for file in files)


def beside_a_dialog(bench, environment):
    """Beside a dialog of GTK and a Qt window with one text, with everything in the page cache and with nothing."""
    if not shutil.which("zenity"):
        print("zenity is missing: its rows are left out", flush=True)
        return
    bench.provision()
    own = [bench.bin / "sela-share", SAMPLES / "baseline.jpg"]
    own_environment = preloading(bench, environment, "first-frame.so")
    text = "Add 1 file to Trips"
    window = [bench.bin / "empty-window", text]
    dialog = ["zenity", "--info", "--text", text]
    dialog_environment = preloading(bench, environment, "first-gtk-frame.so")

    def started(command, its_environment, is_cold):
        if is_cold:
            os.sync()
            DROP_CACHES.write_text("3")
        return bench.run(command, its_environment)

    for is_cold in (False, True):
        if is_cold and not os.access(DROP_CACHES, os.W_OK):
            print("caches cannot be dropped: the rows of a cold start are left out", flush=True)
            continue
        ours, qt, zenity = bench.alternate(lambda: started(own, own_environment, is_cold),
                                           lambda: started(window, own_environment, is_cold),
                                           lambda: started(dialog, dialog_environment, is_cold))
        name = "cold start" if is_cold else "start"
        yield Row(f"{name} to first frame, Xvfb", ours.milliseconds, "ms", "zenity", zenity.milliseconds,
                  "at most 0.3", 0.3)
        if is_cold:
            yield Row(f"{name} to first frame, Xvfb", ours.milliseconds, "ms", "Qt window with one text",
                      qt.milliseconds)
            yield Row("read from the disk by then", ours.read_mebibytes, "MiB", "zenity", zenity.read_mebibytes)
            yield Row("read from the disk by then", ours.read_mebibytes, "MiB", "Qt window with one text",
                      qt.read_mebibytes)
    if shutil.which("strace"):
        for kind, count, of_window, of_dialog in zip(("files", "libraries"), opened(bench, own, own_environment),
                                                     opened(bench, window, own_environment),
                                                     opened(bench, dialog, dialog_environment)):
            yield Row(f"{kind} opened by the first frame", count, "", "zenity", of_dialog)
            yield Row(f"{kind} opened by the first frame", count, "", "Qt window with one text", of_window)
    else:
        print("strace is missing: the rows of opened files are left out", flush=True)


def with_display(bench):
    # Without a reset after each program, which takes longer than the window does.
    display = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                                "-noreset"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    try:
        number = display.stdout.readline().strip()
        environment = {"DISPLAY": ":" + number, "QT_QPA_PLATFORM": "xcb"}
        yield from first_frame(bench, "Xvfb", environment)
        yield from beside_a_dialog(bench, environment | {"GDK_BACKEND": "x11"})
    finally:
        display.terminate()
        display.wait()


def thumbnails(bench):
    """The peers make the same three pictures one after another."""
    vips = ["vipsthumbnail", "-s", "534", "-o", str(bench.folder / "%s.jpg")]
    video = ["ffmpegthumbnailer", "-s", "534", "-t", "25%", "-o", str(bench.folder / "video.jpg"), "-i"]
    cases = [
        ("three JPEG of 12 megapixels", ["medium.jpg"] * 3, [vips + ["medium.jpg"]] * 3),
        ("three HEIC of 12 megapixels", ["medium.heic"] * 3, [vips + ["medium.heic"]] * 3),
        ("JPEG, 1080p, 4K HEVC", ["medium.jpg", "1080p.mp4", "4k-hevc.mp4"],
         [vips + ["medium.jpg"], video + ["1080p.mp4"], video + ["4k-hevc.mp4"]]),
        ("three JPEG of 48 megapixels", ["large.jpg"] * 3, [vips + ["large.jpg"]] * 3),
    ]
    bench.provision()
    for name, files, peers in cases:
        paths = [SAMPLES / file for file in files]
        script = " && ".join(" ".join([*peer[:-1], str(SAMPLES / peer[-1])]) for peer in peers)
        # The tree is written once the thumbnails are shown; nobody adds them, so the request is cancelled.
        ours, theirs = bench.alternate(
            lambda: bench.run_ours([bench.bin / "sela-share", "--headless", *paths, "--tree",
                                    bench.folder / "tree.json"], status=3),
            lambda: bench.run(["sh", "-c", script]))
        yield Row(f"start to thumbnails, {name}", ours.milliseconds, "ms",
                  " / ".join(sorted({peer[0] for peer in peers})), theirs.milliseconds, "ahead", 1.0)
        yield Row(f"peak memory of sela-share, {name}", ours.mebibytes, "MiB", "limit", 48, "under", 1.0)
        yield Row(f"peak memory of the largest helper, {name}", ours.helper_mebibytes, "MiB")


def rows(bench):
    yield from first_frame(bench, "offscreen", {"QT_QPA_PLATFORM": "offscreen"})
    yield from with_display(bench)
    yield from thumbnails(bench)
