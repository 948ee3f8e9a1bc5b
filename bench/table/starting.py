"""From the start of the process to what the user sees first."""

import subprocess

from measuring import SAMPLES, Row


def first_frame(bench, name, environment):
    """The same library ends both programs once their first frame was sent to the display."""
    environment = bench.environment | environment | {"LD_PRELOAD": str(bench.bin / "first-frame.so")}
    bench.provision()
    file = SAMPLES / "baseline.jpg"
    window = bench.bin / "empty-window"
    ours, peer, text = bench.alternate(lambda: bench.run([bench.bin / "sela-share", file], environment),
                                       lambda: bench.run([window], environment),
                                       lambda: bench.run([window, "Add 1 file to Trips"], environment))
    yield Row(f"start to first frame, {name}", ours.milliseconds, "ms", "empty Qt window", peer.milliseconds,
              "at most 1.3", 1.3)
    yield Row(f"start to first frame, {name}", ours.milliseconds, "ms", "Qt window with one text",
              text.milliseconds)
    yield Row(f"memory at the first frame, {name}", ours.mebibytes - peer.mebibytes, "MiB more",
              "15 MiB above an empty Qt window", 15, "at most", 1.0)


def with_display(bench):
    # Without a reset after each program, which takes longer than the window does.
    display = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                                "-noreset"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    try:
        number = display.stdout.readline().strip()
        yield from first_frame(bench, "Xvfb", {"DISPLAY": ":" + number, "QT_QPA_PLATFORM": "xcb"})
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
