"""Makes the samples that no tool makes: see make-samples, which runs this in their folder."""

import struct
import sys


def swapped_profile():
    """An ICC profile like sRGB whose red and blue are exchanged, so that obeying it shows."""

    def fixed(number):
        return struct.pack(">i", round(number * 65536))

    def xyz(x, y, z):
        return b"XYZ \0\0\0\0" + fixed(x) + fixed(y) + fixed(z)

    red, green, blue = (0.4361, 0.2225, 0.0139), (0.3851, 0.7169, 0.0971), (0.1431, 0.0606, 0.7141)
    curve = b"curv\0\0\0\0" + struct.pack(">IH", 1, round(2.2 * 256)) + b"\0\0"
    text = b"swapped\0"
    description = b"desc\0\0\0\0" + struct.pack(">I", len(text)) + text + b"\0" * 78
    tags = {
        b"desc": description + b"\0" * (-len(description) % 4),
        b"cprt": b"text\0\0\0\0none\0\0\0\0",
        b"wtpt": xyz(0.9642, 1.0, 0.8249),
        b"rXYZ": xyz(*blue), b"gXYZ": xyz(*green), b"bXYZ": xyz(*red),
        b"rTRC": curve, b"gTRC": curve, b"bTRC": curve,
    }
    table, body = b"", b""
    start = 128 + 4 + 12 * len(tags)
    for name, content in tags.items():
        table += name + struct.pack(">II", start + len(body), len(content))
        body += content
    size = start + len(body)
    header = struct.pack(">I4sI4s4s4s", size, b"none", 0x02100000, b"mntr", b"RGB ", b"XYZ ")
    header += b"\0" * 12 + b"acsp" + b"\0" * 28 + fixed(0.9642) + fixed(1.0) + fixed(0.8249)
    return header + b"\0" * (128 - len(header)) + struct.pack(">I", len(tags)) + table + body


def with_profile(jpeg, profile):
    segment = b"ICC_PROFILE\0\x01\x01" + profile
    return jpeg[:2] + b"\xff\xe2" + struct.pack(">H", len(segment) + 2) + segment + jpeg[2:]


def dng(jpeg, orientation):
    """A DNG file: raw samples in the first directory, previews in two subdirectories (JPEG, and a small RGB one)."""

    def directory(entries, position):
        content = struct.pack("<H", len(entries))
        extra = b""
        extra_start = position + 2 + 12 * len(entries) + 4
        for tag, kind, values in sorted(entries):
            size = {3: "H", 4: "I"}[kind]
            packed = struct.pack("<%d%s" % (len(values), size), *values)
            if len(packed) > 4:
                content += struct.pack("<HHII", tag, kind, len(values), extra_start + len(extra))
                extra += packed
            else:
                content += struct.pack("<HHI", tag, kind, len(values)) + packed.ljust(4, b"\0")
        return content + b"\0\0\0\0" + extra

    file = bytearray(b"II*\0\0\0\0\0")

    def append(content):
        place = len(file)
        file.extend(content)
        file.extend(b"\0" * (len(file) % 2))
        return place

    raw = append(bytes(range(256)) * 4)
    preview = append(jpeg)
    small = append(bytes([255, 0, 0] * 4 + [0, 255, 0] * 4) * 3 + bytes([0, 0, 255] * 4 + [255, 255, 255] * 4) * 3)
    jpeg_directory = append(directory([
        (254, 4, [1]), (256, 4, [160]), (257, 4, [120]), (258, 3, [8, 8, 8]), (259, 3, [7]), (262, 3, [6]),
        (273, 4, [preview]), (277, 3, [3]), (279, 4, [len(jpeg)])], len(file)))
    small_directory = append(directory([
        (254, 4, [1]), (256, 4, [8]), (257, 4, [6]), (258, 3, [8, 8, 8]), (259, 3, [1]), (262, 3, [2]),
        (273, 4, [small]), (277, 3, [3]), (278, 4, [6]), (279, 4, [8 * 6 * 3])], len(file)))
    main = append(directory([
        (254, 4, [0]), (256, 4, [32]), (257, 4, [16]), (258, 3, [16]), (259, 3, [1]), (262, 3, [32803]),
        (273, 4, [raw]), (274, 3, [orientation]), (277, 3, [1]), (279, 4, [1024]),
        (330, 4, [jpeg_directory, small_directory])], len(file)))
    struct.pack_into("<I", file, 4, main)
    return bytes(file)


def read(name):
    with open(name, "rb") as file:
        return file.read()


def write(name, content):
    with open(name, "wb") as file:
        file.write(content)


def pictures():
    jpeg = read("baseline.jpg")
    write("profile.jpg", with_profile(jpeg, swapped_profile()))
    write("preview.dng", dng(jpeg, 1))
    write("turned.dng", dng(jpeg, 6))
    write("trailing.jpg", jpeg + b"trailing bytes of a camera")


def videos():
    movie = bytearray(read("second.mp4"))
    place = movie.index(b"mvhd")
    # Version 0: version and flags, two dates, the time scale, the duration. No duration counts as absurd as this.
    struct.pack_into(">I", movie, place + 4 + 16, 0xFFFFFFF0)
    for box in (b"tkhd",):
        struct.pack_into(">I", movie, movie.index(box) + 4 + 20, 0xFFFFFFF0)
    write("absurd.mp4", bytes(movie))


{"pictures": pictures, "videos": videos}[sys.argv[1]]()
