"""What happens inside the process, by Google Benchmark."""

from measuring import Row

LEDGER_SIZES = (10, 100, 1000, 10000)
ALBUM_COUNTS = (100, 1000, 10000, 100000)
FRAMES = {"cardFrame": "a frame of the card", "keypadFrame": "a frame of the keypad",
          "pickerScrollFrame": "a frame of the scrolling picker", "pushFrame": "a frame of the push animation"}
LAYOUTS = {"cardLayout": "layout of the card", "keypadLayout": "layout of the keypad",
           "pickerLayout": "layout of the picker"}


def rows(bench, growth):
    """Adds to `growth` the curves (name, [(size, milliseconds)]) that a plot shows."""
    ledger = bench.google("bench_ledger")
    above = {1000: 2, 10000: 3}  # milliseconds above the peer
    for size in LEDGER_SIZES:
        ours, peer = ledger[f"recordItem/{size}"], ledger[f"insertRow/{size}"]
        yield Row(f"record item {size:,}", ours, "ms", "SQLite insert of a row", peer)
        if size in above:
            yield Row(f"record item {size:,}, above the peer", max(ours - peer, 0), "ms", "limit", above[size],
                      "at most", 1.0)
    for name, label in (("recordItem", "record an item"), ("spliceItem", "splice it into the ledger's text"),
                        ("insertRow", "SQLite: insert a row")):
        growth.append((label, [(size, ledger[f"{name}/{size}"]) for size in LEDGER_SIZES]))

    unlock = bench.google("bench_unlock")
    for count in ALBUM_COUNTS:
        yield Row(f"unlock to table, {count:,} albums", unlock[f"lastDigitToTable/{count}/4"], "ms",
                  "decoding the albums alone", unlock[f"decodeAlbums/{count}"])
    growth.append(("unlock to table", [(count, unlock[f"lastDigitToTable/{count}/4"]) for count in ALBUM_COUNTS]))
    growth.append(("decode the albums", [(count, unlock[f"decodeAlbums/{count}"]) for count in ALBUM_COUNTS]))

    screens = bench.google("bench_screens")
    for name, label in FRAMES.items():
        yield Row(f"{label}, 750 x 1334 pixels", screens[f"{name}/phone"], "ms", "limit", 4, "under", 1.0)
    for name, label in FRAMES.items():
        yield Row(f"{label}, 3840 x 2160 pixels", screens[f"{name}/4K"], "ms", "limit", 16, "under", 1.0)
    for name, label in LAYOUTS.items():
        yield Row(label, screens[name], "ms", "limit", 0.5, "under", 1.0)
