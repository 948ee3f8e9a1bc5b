"""Makes the samples that no tool can make: see make-samples, which runs this in their folder."""

import random
import struct
import sys
import zlib


def swapped_profile():
    """An ICC profile like sRGB with red and blue exchanged, so that using it is visible."""

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
    """The consecutive boxes in `content`, as pairs of kind and content."""
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


def heif(items, *references):
    """A HEIF file of items (kind, data, property boxes), the first of them the picture. References are a kind, the
    number of an item from 1 on, and the numbers of those it refers to."""
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
        if references:
            parts += full_box(b"iref", b"".join(
                box(kind, struct.pack(">HH%dH" % len(to), item, len(to), *to)) for kind, item, to in references))
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
    write("grid.heic", heif([(b"grid", grid, [size_box(640, 480)])] + tiles, (b"dimg", 1, (2, 3, 4, 5))))


def described_pictures():
    """Pictures with items that belong to them: a gain map and what describes both, thumbnails that match the picture or not."""
    configuration, data = coded_picture(read("plain.heic"))
    picture = (b"hvc1", data, [configuration, size_box(640, 480)])
    write("gain-map.heic", with_gain_map(picture, (640, 480)))
    configuration, data = coded_picture(read("tile-red.heic"))
    for name, width, height in (("square", 320, 320), ("boasting", 640, 480)):
        thumbnail = (b"hvc1", data, [configuration, size_box(width, height)])
        write("thumbnail-%s.heic" % name, heif([picture, thumbnail], (b"thmb", 2, (1,))))
    configuration, data = coded_picture(read("paper.heic"))
    perceptual = box(b"colr", b"nclx" + struct.pack(">HHHB", 9, 16, 9, 0x80))
    write("perceptual.heic", heif([(b"hvc1", data, [configuration, size_box(160, 120), perceptual])]))
    configuration, data = coded_picture(read("tile-red.heic"))
    write("huge.heic", huge_with_thumbnail(configuration, picture))


def with_gain_map(coded, side):
    """A picture with a gain map and EXIF data that belong to both, as phones write them."""
    exif = struct.pack(">I", 6) + b"Exif\0\0MM\0*\0\0\0\x08\0\0\0\0\0\0"
    return heif([coded, (b"tmap", b"\0" * 62, [size_box(*side)]), (b"Exif", exif, [])],
                (b"dimg", 2, (1,)), (b"cdsc", 3, (1, 2)))


def huge_with_thumbnail(configuration, thumbnail):
    """A picture of 200 megapixels that cannot be decoded, and its thumbnail."""
    return heif([(b"hvc1", b"", [configuration, size_box(16384, 12288)]), thumbnail], (b"thmb", 2, (1,)))


def quarters_of(width, height, red, green, blue, white):
    """Rows from the top, as lists of one value a pixel."""
    upper = [red] * (width // 2) + [green] * (width - width // 2)
    lower = [blue] * (width // 2) + [white] * (width - width // 2)
    return [upper] * (height // 2) + [lower] * (height - height // 2)


def bmp(bits, rows, header=40, compression=0, masks=(), palette=(), top_down=False, data=None):
    """A BMP file of rows of numbers, plain unless `data` is given."""
    width, height = len(rows[0]), len(rows)
    if data is None:
        data = b""
        for row in rows if top_down else reversed(rows):
            number = "".join(format(value, "0%db" % bits)[-bits:] for value in row)
            if bits > 8:
                line = b"".join(value.to_bytes(bits // 8, "little") for value in row)
            else:
                line = int(number.ljust((len(number) + 7) // 8 * 8, "0"), 2).to_bytes((len(number) + 7) // 8, "big")
            data += line + b"\0" * (-len(line) % 4)
    if header == 12:
        info = struct.pack("<IHhHH", 12, width, height, 1, bits)
        colours = b"".join(bytes(colour) for colour in palette)
    else:
        info = struct.pack("<IiiHHIIiiII", header, width, -height if top_down else height, 1, bits, compression, 0, 0,
                           0, len(palette), 0)
        info += b"".join(struct.pack("<I", mask) for mask in masks)
        info = info[:header] if header < 40 else info.ljust(header, b"\0")
        colours = b"".join(bytes(colour) + b"\0" for colour in palette)
    start = 14 + len(info) + len(colours)
    return b"BM" + struct.pack("<IHHI", start + len(data), 0, 0, start) + info + colours + data


def bitmaps():
    palette = [(0, 0, 255), (0, 255, 0), (255, 0, 0), (255, 255, 255)]  # blue, green, red
    indices = quarters_of(160, 120, 0, 1, 2, 3)
    write("os2.bmp", bmp(4, indices, header=12, palette=palette + [(0, 0, 0)] * 12))
    write("os2-16.bmp", bmp(8, indices, header=16, palette=palette + [(0, 0, 0)] * 252))
    write("os2-64.bmp", bmp(24, quarters_of(160, 120, 0xFF0000, 0xFF00, 0xFF, 0xFFFFFF), header=64))
    write("two-bits.bmp", bmp(2, indices, palette=palette))
    write("top-down.bmp", bmp(8, indices, palette=palette, top_down=True))
    colours = quarters_of(160, 120, 0x7C00, 0x3E0, 0x1F, 0x7FFF)
    write("five-bits.bmp", bmp(16, colours))
    six = (0xF800, 0x7E0, 0x1F)
    write("six-bits.bmp", bmp(16, quarters_of(160, 120, 0xF800, 0x7E0, 0x1F, 0xFFFF), compression=3, masks=six))
    ten = (0x3FF00000, 0xFFC00, 0x3FF)
    write("ten-bits.bmp", bmp(32, quarters_of(160, 120, *ten, 0x3FFFFFFF), compression=3, masks=ten))
    bits = (0xFF0000, 0xFF00, 0xFF, 0xFF000000)
    full = quarters_of(160, 120, *bits[:3], 0xFFFFFF)
    write("alpha-unset.bmp", bmp(32, full, header=108, compression=3, masks=bits))
    half = quarters_of(160, 120, 0x80FF0000, 0x8000FF00, 0x800000FF, 0x80FFFFFF)
    write("alpha-bits.bmp", bmp(32, half, compression=6, masks=bits))
    write("no-red.bmp", bmp(32, full, compression=3, masks=(0,) + bits[1:3]))
    write("no-masks.bmp", bmp(32, full, compression=3, masks=(0, 0, 0)))
    write("jpeg-inside.bmp", bmp(0, indices, compression=4, data=read("baseline.jpg")))

    def runs(left, right):
        return b"\x50" + left + b"\x50" + right + b"\0\0"

    def lines(red, green, blue, white):
        return runs(blue, white) * 60 + runs(red, green) * 60 + b"\0\1"

    write("runs-8.bmp", bmp(8, indices, compression=1, palette=palette, data=lines(b"\0", b"\1", b"\2", b"\3")))
    nibbles = [bytes([0x11 * index]) for index in range(4)]
    write("runs-4.bmp", bmp(4, indices, compression=2, palette=palette, data=lines(*nibbles)))
    write("runs-24.bmp", bmp(24, indices, header=64, compression=4, data=lines(*map(bytes, palette))))
    # A pixel one by one in the middle, as odd a number as needs filling; the rest of the upper half is passed over.
    mixed = runs(b"\2", b"\3") * 60 + b"\x50\0\0\3\1\1\1\0\x4d\1\0\2\0\x3b\0\1"
    write("runs-moved.bmp", bmp(8, indices, compression=1, palette=palette, data=mixed))
    write("cut-runs.bmp", read("runs-8.bmp")[:-400])


def pict(operations, width=160, height=120):
    frame = struct.pack(">hhhh", 0, 0, height, width)
    head = b"\0" * 514 + frame + b"\0\x11\x02\xff\x0c\0" + b"\0" * 24
    return head + operations + b"\0\xff"


def picts():
    def pixels(row_bytes, bits, components, pack_type):
        return struct.pack(">Hhhhh", 0x8000 | row_bytes, 0, 0, 120, 160) + \
            struct.pack(">HHIIIHHHHIII", 0, pack_type, 0, 72 << 16, 72 << 16, 16, bits, components, 8, 0, 0, 0)

    places = struct.pack(">hhhhhhhhH", 0, 0, 120, 160, 0, 0, 120, 160, 0)
    clip = b"\0\1\0\x0a" + struct.pack(">hhhh", 0, 0, 120, 160)
    table = struct.pack(">IHH", 0, 0, 3) + b"".join(
        struct.pack(">HHHH", index, *(0xFFFF * level for level in colour))
        for index, colour in enumerate(((1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 1, 1))))

    def rows(left, right):
        line = bytes([257 - 80]) + left + bytes([257 - 80]) + right
        return (bytes([len(line)]) + line) * 60

    indexed = rows(b"\0", b"\1") + rows(b"\2", b"\3")
    write("indexed.pict", pict(clip + b"\0\x98" + pixels(160, 8, 1, 0) + table + places + indexed))

    def planes(left, right):
        line = b"".join(bytes([257 - 80, a, 257 - 80, b]) for a, b in zip(left, right))
        return struct.pack(">H", len(line)) + line

    direct = planes(b"\xff\0\0", b"\0\xff\0") * 60 + planes(b"\0\0\xff", b"\xff\xff\xff") * 60
    write("direct.pict", pict(clip + b"\0\x9a\0\0\0\xff" + pixels(640, 32, 3, 4) + places + direct))
    jpeg = read("baseline.jpg")
    description = struct.pack(">I4s", 86, b"jpeg") + b"\0" * 24 + struct.pack(">HHIIIH", 160, 120, 0, 0, len(jpeg), 1)
    quicktime = b"\0" * 68 + description.ljust(86, b"\0") + jpeg
    write("quicktime.pict", pict(clip + b"\x82\0" + struct.pack(">I", len(quicktime)) + quicktime))
    write("lines.pict", pict(clip + b"\0\x30" + struct.pack(">hhhh", 0, 0, 50, 50)))


def entropy_start(jpeg):
    scan = jpeg.index(b"\xff\xda")
    return scan + 2 + struct.unpack_from(">H", jpeg, scan + 2)[0]


def cut_pictures():
    """Photos of which some part is missing at the end: a tenth, more than half, and all but a tenth of the rows."""
    for name in ("photo.jpg", "photo-progressive.jpg"):
        jpeg = read(name)
        start = entropy_start(jpeg)
        for part in (10, 45, 90):
            write("cut-%d-%s" % (part, name), jpeg[:start + (len(jpeg) - start) * part // 100])


def png_chunk(kind, content):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))


def png(width, height, depth, colours, interlaced, *chunks):
    head = struct.pack(">IIBBBBB", width, height, depth, colours, 0, 0, interlaced)
    return b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", head) + b"".join(chunks)


def perceptual_pngs():
    """White paper and a grey card by the signals of PQ (16) and HLG (18)."""
    for name, transfer, paper in (("perceptual", 16, 0.58), ("hybrid", 18, 0.75)):
        row = b"\0" + struct.pack(">HHH", *[round(65535 * paper)] * 3) * 80 + struct.pack(">HHH", *[round(65535 * 0.38)] * 3) * 80
        write(name + ".png", png(160, 120, 16, 2, 0, png_chunk(b"cICP", bytes([9, transfer, 0, 1])),
                                 png_chunk(b"IDAT", zlib.compress(row * 120)), png_chunk(b"IEND", b"")))


def stripes():
    """A picture of 90 megapixels, all rows alike, whose JPEG is large."""
    row = zlib.compressobj(1)
    data = row.compress(b"\0" + random.Random(1).randbytes(3 * 10_000))
    data += b"".join(row.compress(b"\2" + bytes(3 * 10_000)) for _ in range(8_999)) + row.flush()
    write("stripes.png", png(10_000, 9_000, 8, 2, 0, png_chunk(b"IDAT", data), png_chunk(b"IEND", b"")))


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

    write("bomb-runs.bmp", bmp(8, [b"\0" * side] * 8000, compression=1, data=b"\xff\0" * 1000 + b"\0\2\0\0" * 100))
    write("bomb-operations.pict", pict(b"\0\x1c" * 1_000_000))

    configuration, data = coded_picture(read("plain.heic"))
    head = box(b"ftyp", b"heic\0\0\0\0mif1heic")
    write("bomb-size.heic", heif([(b"hvc1", data, [configuration, size_box(side, side)])]))
    tile = (b"hvc1", data, [configuration, size_box(640, 480)])
    grid = struct.pack(">BBBBII", 0, 1, 255, 255, side, side)
    write("bomb-grid.heic", heif([(b"grid", grid, [size_box(side, side)]), tile], (b"dimg", 1, (2,) * 65535)))
    ring = struct.pack(">BBBBHH", 0, 0, 0, 0, 640, 480)
    write("bomb-ring.heic", heif([(b"grid", ring, [size_box(640, 480)])], (b"dimg", 1, (1,))))
    write("bomb-boxes.heic", head + full_box(b"meta", nested(b"iprp", 20_000)))
    many = heif([(b"hvc1", data, [configuration, size_box(640, 480)])] + [(b"hvc1", b"", [])] * 10_000)
    write("bomb-items.heic", many)


def planar_frames(movie, width, height, frames):
    """Turns the raw frames of a movie that is five pixels wider into frames of PackBits lines, which are as long."""
    movie = bytearray(movie)
    place = movie.index(b"raw ")
    movie[place:place + 4] = b"8BPS"
    struct.pack_into(">HH", movie, place + 28, width, height)
    frame_size = (3 * (width + 5) + 1) // 2 * 2 * height
    start = movie.index(b"mdat") + 4

    def line(colours):
        values = [colours[16 * x // width] if len(colours) == 16 else colours[2 * x // width] for x in range(width)]
        parts = [values[x:x + 128] for x in range(0, width, 128)]
        return b"".join(bytes([len(part) - 1] + part) for part in parts)

    for number in range(frames):
        upper = [255 * (number >> bit & 1) for bit in range(16)]
        planes = [line(upper) * (height // 2) + line(lower) * (height - height // 2)
                  for lower in ([255, 0], [0, 0], [0, 255])]
        frame = struct.pack(">H", width + 3) * (3 * height) + b"".join(planes)
        movie[start + number * frame_size:start + number * frame_size + len(frame)] = frame
    return bytes(movie)


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
    described_pictures()
    bitmaps()
    picts()
    cut_pictures()
    perceptual_pngs()
    stripes()
    picture_bombs()


def videos():
    movie = read("second.mp4")
    # No duration counts as absurd as this, which newer libraries take from the frames and the edit list.
    absurd = 0xFFFFFFF0
    write("absurd.mp4", with_tables(movie, mvhd=[(16, absurd)], tkhd=[(20, absurd)], elst=[(8, absurd)],
                                    mdhd=[(12, 100), (16, absurd)], stts=[(12, 0x7FFFFFFF)]))
    # The display matrix, by rows, and with what it moves the picture to after turning it.
    for name, sine, across, down in (("portrait", 0xFFFF0000, 0, 320 << 16), ("portrait-other", 0x10000, 180 << 16, 0)):
        matrix = 0, sine, 0, -sine & 0xFFFFFFFF, 0, 0, across, down, 1 << 30
        write(name + ".mp4", with_tables(movie, tkhd=[(40 + 4 * i, number) for i, number in enumerate(matrix)]))
    write("8bps.mov", planar_frames(read("planes.mov"), 320, 180, 10))
    video_bombs()


def large():
    configuration, data = coded_picture(read("medium.heic"))
    write("medium-gain-map.heic", with_gain_map((b"hvc1", data, [configuration, size_box(4032, 3024)]), (4032, 3024)))
    configuration, data = coded_picture(read("thumbnail-512.heic"))
    thumbnail = (b"hvc1", data, [configuration, size_box(512, 384)])
    write("huge-thumbnail.heic", huge_with_thumbnail(configuration, thumbnail))


{"pictures": pictures, "videos": videos, "large": large}[sys.argv[1]]()
