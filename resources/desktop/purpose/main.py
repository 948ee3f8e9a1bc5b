#!/usr/bin/python3
"""Adds what a KDE application shares: main.py --server SOCKET [...].

The application writes over the socket the length of a CBOR map, a line end and the map, of which "urls" counts here; it
reads lines of JSON that say how it ended.
"""

import json
import socket
import subprocess
import sys

USER_CANCELLED, OTHER_ERROR = 1, 100


def decode(data, at):
    """The CBOR value that begins at an index, of the kinds that JSON knows but numbers, and the index behind it."""
    kind, size = data[at] >> 5, data[at] & 31
    at += 1
    if size in (24, 25, 26, 27):
        width = 1 << (size - 24)
        size = int.from_bytes(data[at:at + width], "big")
        at += width
    if kind in (2, 3):
        return data[at:at + size].decode(errors="surrogateescape"), at + size
    if kind in (4, 5):
        values = []
        for _ in range(size * (kind - 3)):
            value, at = decode(data, at)
            values.append(value)
        return (values if kind == 4 else dict(zip(values[::2], values[1::2]))), at
    return None, at


def main():
    with socket.socket(socket.AF_UNIX) as application:
        application.connect(sys.argv[sys.argv.index("--server") + 1])
        stream = application.makefile("rwb")
        request, _ = decode(stream.read(int(stream.readline())), 0)
        share = subprocess.run(["sela-share", "--quiet", "--", *request["urls"]], stderr=subprocess.PIPE,
                               errors="replace")
        if share.returncode == 0:
            answer = {"output": {"url": ""}}
        else:
            error = USER_CANCELLED if share.returncode == 3 else OTHER_ERROR
            answer = {"error": error, "errorText": share.stderr.strip()}
        stream.write(json.dumps(answer).encode() + b"\n")
        stream.flush()


if __name__ == "__main__":
    main()
