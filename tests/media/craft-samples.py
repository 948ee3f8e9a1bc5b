"""Makes the samples that no tool makes: see make-samples, which runs this in their folder."""

import struct
import sys
import zlib


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


def box(kind, content):
    return struct.pack(">I", 8 + len(content)) + kind + content


def full_box(kind, content, version=0, flags=0):
    return box(kind, struct.pack(">I", version << 24 | flags) + content)


def boxes(content):
    """The boxes that follow one another in `content`, as pairs of kind and content."""
    place = 0
    while place < len(content):
        size, kind = struct.unpack_from(">I4s", content, place)
        yield kind, content[place + 8:place + size]
        place += size


def coded_picture(heic):
    """The decoder's configuration box and the data of the one picture in a file of heif-enc."""
    top = dict(boxes(heic))
    properties = dict(boxes(dict(boxes(dict(boxes(top[b"meta"][4:]))[b"iprp"]))[b"ipco"]))
    return box(b"hvcC", properties[b"hvcC"]), top[b"mdat"]


def size_box(width, height):
    return full_box(b"ispe", struct.pack(">II", width, height))


def heif(items, tiles=()):
    """A HEIF file of items (kind, data, property boxes), the first of them the picture; `tiles` are its parts."""
    properties, associations, names = [], b"", b""
    for number, (kind, _, own) in enumerate(items, 1):
        names += full_box(b"infe", struct.pack(">HH4s", number, 0, kind) + b"\0", 2)
        associations += struct.pack(">HB", number, len(own))
        for each in own:
            properties.append(each)
            associations += struct.pack("B", 0x80 | len(properties))

    def meta(start):
        places = struct.pack(">BBH", 0x44, 0, len(items))
        for number, (_, data, _) in enumerate(items, 1):
            places += struct.pack(">HHHII", number, 0, 1, start, len(data))
            start += len(data)
        parts = full_box(b"hdlr", b"\0\0\0\0pict" + b"\0" * 13)
        parts += full_box(b"pitm", struct.pack(">H", 1)) + full_box(b"iloc", places)
        parts += full_box(b"iinf", struct.pack(">H", len(items)) + names)
        if tiles:
            parts += full_box(b"iref", box(b"dimg", struct.pack(">HH%dH" % len(tiles), 1, len(tiles), *tiles)))
        parts += box(b"iprp", box(b"ipco", b"".join(properties)) +
                     full_box(b"ipma", struct.pack(">I", len(items)) + associations))
        return full_box(b"meta", parts)

    head = box(b"ftyp", b"heic\0\0\0\0mif1heic")
    start = len(head) + len(meta(0)) + 8
    return head + meta(start) + box(b"mdat", b"".join(data for _, data, _ in items))


def turned_pictures():
    configuration, data = coded_picture(read("plain.heic"))
    own = [configuration, size_box(640, 480)]
    write("rotated.heic", heif([(b"hvc1", data, own + [box(b"irot", b"\1")])]))
    write("mirrored.heic", heif([(b"hvc1", data, own + [box(b"imir", b"\1")])]))
    tiles = []
    for colour in ("red", "lime", "blue", "white"):
        configuration, data = coded_picture(read("tile-%s.heic" % colour))
        tiles.append((b"hvc1", data, [configuration, size_box(320, 240)]))
    grid = struct.pack(">BBBBHH", 0, 0, 1, 1, 640, 480)
    write("grid.heic", heif([(b"grid", grid, [size_box(640, 480)])] + tiles, (2, 3, 4, 5)))


def png_chunk(kind, content):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))


def png(width, height, depth, colours, interlaced, *chunks):
    head = struct.pack(">IIBBBBB", width, height, depth, colours, 0, 0, interlaced)
    return b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", head) + b"".join(chunks)


def jpeg_head(width, height, start_of_frame):
    return bytes([0xFF, start_of_frame]) + struct.pack(">HBHHB", 17, 8, height, width, 3) + \
        b"\1\x22\0\2\x11\0\3\x11\0"


def riff(*chunks):
    content = b"WEBP" + b"".join(kind + struct.pack("<I", len(data)) + data + b"\0" * (len(data) % 2)
                                for kind, data in chunks)
    return b"RIFF" + struct.pack("<I", len(content)) + content


def nested(kind, depth):
    return b"".join(struct.pack(">I", 8 * level) + kind for level in range(depth, 0, -1))


def with_tables(movie, **fields):
    """A movie with numbers in its boxes replaced: the box, and pairs of place (behind its name) and 32-bit number."""
    movie = bytearray(movie)
    for name, numbers in fields.items():
        place = movie.index(name.encode()) + 4
        for offset, number in numbers:
            struct.pack_into(">I", movie, place + offset, number)
    return bytes(movie)


def picture_bombs():
    side = 60000
    row = zlib.compressobj(9)
    black = b"".join(row.compress(b"\0" * (side // 8 + 1)) for _ in range(side)) + row.flush()
    write("bomb-header.png", png(side, side, 8, 6, 0, png_chunk(b"IDAT", zlib.compress(b"\0" * 1000))))
    write("bomb-pixels.png", png(side, side, 1, 0, 0, png_chunk(b"IDAT", black), png_chunk(b"IEND", b"")))
    write("bomb-interlaced.png", png(side, side, 1, 0, 1, png_chunk(b"IDAT", black)))
    text = png_chunk(b"zTXt", b"a\0\0" + zlib.compress(b"\0" * 7_000_000))
    write("bomb-texts.png", png(8, 8, 8, 0, 0, *[text] * 200))
    write("bomb-small-texts.png", png(8, 8, 8, 0, 0, png_chunk(b"tEXt", b"a\0b") * 50_000))

    jpeg = read("baseline.jpg")
    frame, after = jpeg.index(b"\xff\xc0"), jpeg.index(b"\xff\xc4")
    write("bomb-baseline.jpg", jpeg[:frame] + jpeg_head(side, side, 0xC0) + jpeg[after:])
    progressive = read("progressive.jpg")
    frame = progressive.index(b"\xff\xc2")
    rest = frame + 2 + struct.unpack_from(">H", progressive, frame + 2)[0]
    write("bomb-progressive.jpg", progressive[:frame] + jpeg_head(side, side, 0xC2) + progressive[rest:])
    metadata = b"\xff\xe1\xff\xff" + b"Exif\0\0" + b"\0" * 65527
    write("bomb-metadata.jpg", jpeg[:2] + metadata * 100 + jpeg[2:])

    colours = bytes(6)
    image = b"\x2c" + struct.pack("<HHHHB", 0, 0, side, side, 0)
    codes = b"\2" + b"\xff" + b"\x24" * 255 + b"\0"
    head = b"GIF89a" + struct.pack("<HHBBB", side, side, 0x80, 0, 0) + colours
    write("bomb-header.gif", head + image + codes + b";")
    write("bomb-comments.gif", head + (b"\x21\xfe" + (b"\xff" + b"c" * 255) * 16 + b"\0") * 500)
    small = b"\x21\xf9\4\0\1\0\0\0\x2c" + struct.pack("<HHHHB", 0, 0, 1, 1, 0) + b"\2\2\x44\1\0"
    write("bomb-frames.gif", b"GIF89a" + struct.pack("<HHBBB", 1, 1, 0x80, 0, 0) + colours + small * 10_000 + b";")

    write("bomb-header.bmp", b"BM" + struct.pack("<IHHI", 100, 0, 0, 54) +
          struct.pack("<IiiHHIIiiII", 40, side, side, 1, 32, 0, 0, 0, 0, 0, 0) + b"\0" * 1000)

    def small_endian_24(number):
        return struct.pack("<I", number)[:3]

    webp = read("lossy.webp")
    picture = webp[20:]
    write("bomb-header.webp", riff((b"VP8 ", picture[:6] + struct.pack("<HH", 0x3FFF, 0x3FFF) + picture[10:])))
    canvas = b"\2\0\0\0" + small_endian_24(side - 1) * 2
    one = small_endian_24(0) * 2 + small_endian_24(159) + small_endian_24(119) + small_endian_24(10) + b"\0"
    one += b"VP8 " + webp[16:20] + picture
    write("bomb-canvas.webp", riff((b"VP8X", canvas), (b"ANIM", bytes(6)), (b"ANMF", one)))
    canvas = b"\2\0\0\0" + small_endian_24(159) + small_endian_24(119)
    write("bomb-frames.webp", riff((b"VP8X", canvas), (b"ANIM", bytes(6)), *[(b"ANMF", one)] * 10_000))

    configuration, data = coded_picture(read("plain.heic"))
    head = box(b"ftyp", b"heic\0\0\0\0mif1heic")
    write("bomb-size.heic", heif([(b"hvc1", data, [configuration, size_box(side, side)])]))
    tile = (b"hvc1", data, [configuration, size_box(640, 480)])
    grid = struct.pack(">BBBBII", 0, 1, 255, 255, side, side)
    write("bomb-grid.heic", heif([(b"grid", grid, [size_box(side, side)]), tile], (2,) * 65535))
    ring = struct.pack(">BBBBHH", 0, 0, 0, 0, 640, 480)
    write("bomb-ring.heic", heif([(b"grid", ring, [size_box(640, 480)])], (1,)))
    write("bomb-boxes.heic", head + full_box(b"meta", nested(b"iprp", 20_000)))
    many = heif([(b"hvc1", data, [configuration, size_box(640, 480)])] + [(b"hvc1", b"", [])] * 10_000)
    write("bomb-items.heic", many)


def video_bombs():
    movie = read("second.mp4")
    most = 0xFFFFFFFF
    write("bomb-clock.mp4", with_tables(movie, mdhd=[(12, 1), (16, most)], mvhd=[(12, 1), (16, most)]))
    write("bomb-no-clock.mp4", with_tables(movie, mdhd=[(12, 0), (16, 0)], mvhd=[(12, 0), (16, 0)]))
    write("bomb-times.mp4", with_tables(movie, stts=[(8, 0x7FFFFFFF), (12, 0x7FFFFFFF)]))
    write("bomb-samples.mp4", with_tables(movie, stsz=[(4, 1), (8, 0x0FFFFFFF)]))
    write("bomb-size.mp4", with_tables(movie, avc1=[(24, 60000 << 16 | 60000)], tkhd=[(76, 60000 << 16), (80, 60000 << 16)]))
    kind = box(b"ftyp", b"isom\0\0\0\0isomavc1")
    write("bomb-boxes.mp4", kind + nested(b"moov", 100_000))
    write("bomb-tracks.mp4", kind + box(b"moov", box(b"trak", b"") * 200_000))
    write("bomb-metadata.mp4", kind + box(b"moov", box(b"udta", box(b"\xa9nam", b"\0\4\0\0name") * 100_000)))
    write("bomb-packets.mpeg", read("mpeg1.mpeg")[:4096] + b"\0\0\1\xe0\0\0" * 500_000)


def pictures():
    jpeg = read("baseline.jpg")
    write("profile.jpg", with_profile(jpeg, swapped_profile()))
    write("preview.dng", dng(jpeg, 1))
    write("turned.dng", dng(jpeg, 6))
    write("trailing.jpg", jpeg + b"trailing bytes of a camera")
    turned_pictures()
    picture_bombs()


def videos():
    movie = bytearray(read("second.mp4"))
    place = movie.index(b"mvhd")
    # Version 0: version and flags, two dates, the time scale, the duration. No duration counts as absurd as this.
    struct.pack_into(">I", movie, place + 4 + 16, 0xFFFFFFF0)
    for box in (b"tkhd",):
        struct.pack_into(">I", movie, movie.index(box) + 4 + 20, 0xFFFFFFF0)
    write("absurd.mp4", bytes(movie))
    video_bombs()


{"pictures": pictures, "videos": videos}[sys.argv[1]]()
