#!/usr/bin/env python3
"""Writes the small pictures of this folder: one pattern in many encodings, with nothing but the standard
library, so that the decoders are held to an encoder that none of them shares code with.

The pattern is 70 x 50: red rises to the right, green downwards, blue along the diagonal, each over the full
range. The RAW frames are 96 x 64 of four neutral patches; see dng() for what the sensor saw.
"""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 70, 50


def rgb(x, y, top):
    return [x * top // (W - 1), y * top // (H - 1), (x + y) * top // (W + H - 2)]


def grey(x, y, top):
    return [rgb(x, y, top)[2]]


def alpha(x, y, top):
    return top if x < W // 2 else top // 2


# ---- PNG

def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(name, depth, colour, pixel, extra=b"", interlace=False, size=(W, H)):
    width, height = size

    def row(y, xs):
        if depth == 1:
            bits = "".join(str(pixel(x, y)[0]) for x in xs)
            bits += "0" * (-len(bits) % 8)
            return bytes(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8))
        return b"".join(struct.pack(">H" if depth == 16 else "B", v) for x in xs for v in pixel(x, y))

    passes = [(0, 0, 1, 1)]
    if interlace:
        passes = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
    raw = b""
    for x0, y0, dx, dy in passes:
        for y in range(y0, height, dy):
            raw += b"\0" + row(y, range(x0, width, dx))
    data = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, int(interlace)))
    data += extra + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")
    write(name, data)


# ---- TIFF

def tiff_bytes(tags, blocks, order="<", big=False):
    """tags: {number: (type, values)}; blocks: strips or tiles, whose offsets and counts are filled in."""
    size = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 7: 1, 10: 8, 12: 8, 13: 4, 16: 8}
    letter = {1: "B", 2: "B", 3: "H", 4: "I", 7: "B", 13: "I", 16: "Q", 12: "d"}
    tiled = 322 in tags
    where, counts = (324, 325) if tiled else (273, 279)
    offsets_type = 16 if big else 4
    head = (struct.pack(order + "HHHQ", 43, 8, 0, 16) if big else struct.pack(order + "HI", 42, 8))
    head = (b"II" if order == "<" else b"MM") + head
    tags = dict(tags)
    tags[where] = (offsets_type, [0] * len(blocks))
    tags[counts] = (4, [len(b) for b in blocks])

    def encode(kind, values):
        if kind in (5, 10):
            return b"".join(struct.pack(order + ("II" if kind == 5 else "ii"), round(v * 10000), 10000) for v in values)
        return struct.pack(order + str(len(values)) + letter[kind], *values)

    inline, entry = (8, 20) if big else (4, 12)
    directory_end = len(head) + (8 if big else 2) + entry * len(tags) + inline
    extra_size = sum((len(encode(k, v)) + 1) // 2 * 2 for k, v in tags.values() if len(encode(k, v)) > inline)
    at = directory_end + extra_size
    offsets = []
    for b in blocks:
        offsets.append(at)
        at += len(b)
    tags[where] = (offsets_type, offsets)
    directory = struct.pack(order + ("Q" if big else "H"), len(tags))
    extra = b""
    for number in sorted(tags):
        kind, values = tags[number]
        data = encode(kind, values)
        count = len(data) // size[kind]
        directory += struct.pack(order + ("HHQ" if big else "HHI"), number, kind, count)
        if len(data) <= inline:
            directory += data.ljust(inline, b"\0")
        else:
            directory += struct.pack(order + ("Q" if big else "I"), directory_end + len(extra))
            extra += data + b"\0" * (len(data) % 2)
    directory += b"\0" * inline
    return head + directory + extra + b"".join(blocks)


def packbits(data):
    """Each row of 3 x W bytes packed by itself, as the format wants it."""
    rows = [data[i:i + 3 * W] for i in range(0, len(data), 3 * W)]
    return b"".join(bytes([len(row[i:i + 128]) - 1]) + row[i:i + 128] for row in rows for i in range(0, len(row), 128))


def tiff(name, pixel, bits=8, photometric=2, kind="uint", order="<", compression=1, planar=False, tile=0, rows=16,
         big=False, more=None):
    channels = len(pixel(0, 0))
    letter = {("uint", 8): "B", ("uint", 16): "H", ("uint", 32): "I", ("float", 16): "e", ("float", 32): "f",
              ("float", 64): "d"}[(kind, bits)]
    squeeze = {1: bytes, 8: lambda d: zlib.compress(d, 9), 32773: packbits}[compression]
    tags = {256: (4, [W]), 257: (4, [H]), 258: (3, [bits] * channels), 259: (3, [compression]),
            262: (3, [photometric]), 277: (3, [channels]), 284: (3, [2 if planar else 1]),
            339: (3, [3 if kind == "float" else 1] * channels)}
    blocks = []
    planes = [[c] for c in range(channels)] if planar else [list(range(channels))]

    def block(ys, xs, plane):
        values = [pixel(min(x, W - 1), min(y, H - 1))[c] for y in ys for x in xs for c in plane]
        return squeeze(struct.pack(order + str(len(values)) + letter, *values))

    if tile:
        tags[322], tags[323] = (4, [tile]), (4, [tile])
    else:
        tags[278] = (4, [rows])
    for plane in planes:
        for y in range(0, H, tile or rows):
            for x in range(0, W, tile or W):
                ys = range(y, y + tile) if tile else range(y, min(y + rows, H))
                blocks.append(block(ys, range(x, x + (tile or W)), plane))
    tags.update(more or {})
    write(name, tiff_bytes(tags, blocks, order, big))


def two_pages(name, kind):
    """rgb8.tif with a second directory over the same strips; kind 1: it calls itself a smaller copy."""
    tiff(name, lambda x, y: rgb(x, y, 255), more={254: (4, [0])})
    path = os.path.join(HERE, name)
    with open(path, "rb") as file:
        data = bytearray(file.read())
    entries = struct.unpack("<H", data[8:10])[0]
    end = 10 + 12 * entries
    second = bytearray(data[8:end + 4])
    second[10:14] = struct.pack("<I", kind)  # the value of the first entry, tag 254
    data += b"\0" * (len(data) % 2)
    data[end:end + 4] = struct.pack("<I", len(data))
    write(name, bytes(data + second))


# ---- DNG

XYZ_TO_CAMERA_D65 = [0.6988, -0.1384, -0.0714, -0.5631, 1.3410, 0.2447, -0.1485, 0.2204, 0.7318]
XYZ_TO_CAMERA_A = [0.7850, -0.2480, -0.0350, -0.5480, 1.3350, 0.2350, -0.1250, 0.2300, 0.6350]
D65 = [0.95047, 1.0, 1.08883]
BLACK, WHITE = 512, 15600
LEVELS = [0.1, 0.4, 0.8, 1.6]  # of the patches from left to right; 1 is where the first channel saturates


def dng(name, orientation=1, dual=False, baseline=None, gain=1.0):
    """Surfaces of LEVELS x gain, neutral under D65, seen by a camera of XYZ_TO_CAMERA_D65."""
    width, height = 96, 64
    neutral = [sum(XYZ_TO_CAMERA_D65[3 * c + k] * D65[k] for k in range(3)) for c in range(3)]
    neutral = [n / max(neutral) for n in neutral]
    values = []
    for y in range(height):
        for x in range(width):
            level = LEVELS[x * len(LEVELS) // width] * gain * neutral[(y & 1) + (x & 1)]
            values.append(min(BLACK + int(level * (WHITE - BLACK) + 0.5), WHITE))
    tags = {254: (4, [0]), 256: (4, [width]), 257: (4, [height]), 258: (3, [16]), 259: (3, [1]), 262: (3, [32803]),
            271: (2, list(b"Synthetic\0")), 272: (2, list(b"Patches\0")), 274: (3, [orientation]), 277: (3, [1]),
            278: (4, [height]), 284: (3, [1]), 33421: (3, [2, 2]), 33422: (1, [0, 1, 1, 2]),
            50706: (1, [1, 4, 0, 0]), 50707: (1, [1, 1, 0, 0]), 50708: (2, list(b"Synthetic Patches\0")),
            50714: (5, [BLACK]), 50717: (4, [WHITE]), 50728: (5, neutral)}
    if dual:
        tags[50721], tags[50778] = (10, XYZ_TO_CAMERA_A), (3, [17])
        tags[50722], tags[50779] = (10, XYZ_TO_CAMERA_D65), (3, [21])
    else:
        tags[50721], tags[50778] = (10, XYZ_TO_CAMERA_D65), (3, [21])
    if baseline is not None:
        tags[50730] = (10, [baseline])
    write(name, tiff_bytes(tags, [struct.pack("<%dH" % len(values), *values)]))


def write(name, data):
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(data)


def exif_orientation(value):
    return b"II*\0\x08\0\0\0" + struct.pack("<HHHIHHI", 1, 274, 3, 1, value, 0, 0)


def main():
    png("rgb8.png", 8, 2, lambda x, y: rgb(x, y, 255))
    png("rgb16.png", 16, 2, lambda x, y: rgb(x, y, 65535))
    png("rgb8-interlaced.png", 8, 2, lambda x, y: rgb(x, y, 255), interlace=True)
    png("rgba8.png", 8, 6, lambda x, y: rgb(x, y, 255) + [alpha(x, y, 255)])
    png("rgba16.png", 16, 6, lambda x, y: rgb(x, y, 65535) + [alpha(x, y, 65535)])
    png("grey8.png", 8, 0, lambda x, y: grey(x, y, 255))
    png("grey16.png", 16, 0, lambda x, y: grey(x, y, 65535))
    png("grey-alpha8.png", 8, 4, lambda x, y: grey(x, y, 255) + [alpha(x, y, 255)])
    png("grey1.png", 1, 0, lambda x, y: [(x + y) % 2])
    greys = b"".join(bytes([i, 255 - i, i // 2]) for i in range(256))
    png("palette.png", 8, 3, lambda x, y: grey(x, y, 255), chunk(b"PLTE", greys))
    png("palette-alpha.png", 8, 3, lambda x, y: grey(x, y, 255),
        chunk(b"PLTE", greys) + chunk(b"tRNS", bytes([128] * 256)))
    png("rgb8-linear.png", 8, 2, lambda x, y: rgb(x, y, 255), chunk(b"gAMA", struct.pack(">I", 100000)))
    png("rgb16-linear.png", 16, 2, lambda x, y: rgb(x, y, 65535), chunk(b"gAMA", struct.pack(">I", 100000)))
    png("rgb8-p3-chrm.png", 8, 2, lambda x, y: rgb(x, y, 255),
        chunk(b"gAMA", struct.pack(">I", 45455)) +
        chunk(b"cHRM", struct.pack(">8I", 31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000)))
    png("one-pixel.png", 8, 2, lambda x, y: [200, 100, 50], size=(1, 1))
    png("strip-30000x1.png", 8, 0, lambda x, y: [x * 255 // 29999], size=(30000, 1))
    strip = {256: (4, [30000]), 257: (4, [1]), 258: (3, [8]), 259: (3, [8]), 262: (3, [1]), 277: (3, [1]), 278: (4, [1])}
    write("strip-30000x1.tif", tiff_bytes(strip, [zlib.compress(bytes(x * 255 // 29999 for x in range(30000)), 9)]))
    png("rgb8-exif6.png", 8, 2, lambda x, y: rgb(x, y, 255), chunk(b"eXIf", exif_orientation(6)))

    tiff("rgb8.tif", lambda x, y: rgb(x, y, 255))
    tiff("rgb8-packbits.tif", lambda x, y: rgb(x, y, 255), compression=32773)
    tiff("rgb8-tiled.tif", lambda x, y: rgb(x, y, 255), compression=8, tile=32)
    tiff("rgb8-planar.tif", lambda x, y: rgb(x, y, 255), planar=True)
    tiff("rgb8-big.tif", lambda x, y: rgb(x, y, 255), big=True)
    tiff("rgb16-bigendian.tif", lambda x, y: rgb(x, y, 65535), bits=16, order=">", compression=8)
    tiff("rgb16-tiled-planar.tif", lambda x, y: rgb(x, y, 65535), bits=16, compression=8, tile=16, planar=True)
    tiff("rgb-float.tif", lambda x, y: [v / 65535 for v in rgb(x, y, 65535)], bits=32, kind="float", compression=8)
    unit = lambda x, y: [v / 65535 for v in rgb(x, y, 65535)]
    tiff("rgb-half.tif", unit, bits=16, kind="float", compression=8)
    tiff("rgb-double.tif", unit, bits=64, kind="float", compression=8, order=">", tile=16)
    tiff("rgb32.tif", lambda x, y: rgb(x, y, 2**32 - 1), bits=32, compression=8, planar=True)
    tiff("rgb-not-numbers.tif", lambda x, y: [float("nan"), float("inf"), -float("inf")] if x == y else unit(x, y),
         bits=32, kind="float", compression=8)
    two_pages("two-pictures.tif", 0)
    two_pages("picture-and-thumbnail.tif", 1)
    tiff("rgba8.tif", lambda x, y: rgb(x, y, 255) + [alpha(x, y, 255)], more={338: (3, [2])})
    tiff("rgba8-premultiplied.tif",
         lambda x, y: [(v * alpha(x, y, 255) + 127) // 255 for v in rgb(x, y, 255)] + [alpha(x, y, 255)],
         more={338: (3, [1])})
    tiff("rgbx8.tif", lambda x, y: rgb(x, y, 255) + [alpha(x, y, 255)], more={338: (3, [0])})
    tiff("grey8.tif", lambda x, y: grey(x, y, 255), photometric=1)
    tiff("grey16-white-is-zero.tif", lambda x, y: [65535 - grey(x, y, 65535)[0]], bits=16, photometric=0)
    colours = [i * 257 for i in range(256)] + [(255 - i) * 257 for i in range(256)] + [i // 2 * 257 for i in range(256)]
    tiff("palette.tif", lambda x, y: grey(x, y, 255), photometric=3, more={320: (3, colours)})
    tiff("cmyk8.tif", lambda x, y: [255 - v for v in rgb(x, y, 255)] + [0], photometric=5)
    tiff("rgb8-orientation8.tif", lambda x, y: rgb(x, y, 255), more={274: (3, [8])})

    dng("patches.dng")
    dng("patches-baseline.dng", baseline=2.0)
    dng("patches-dual.dng", dual=True)
    dng("patches-orientation8.dng", orientation=8)
    dng("patches-dark.dng", gain=0.25)


main()
