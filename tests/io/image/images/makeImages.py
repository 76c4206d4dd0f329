#!/usr/bin/env python3
"""Writes the small image files of the texture tests, with encoders other than ours:
PNGs with Python's zlib, JPEGs with cjpeg from libjpeg-turbo-progs. The tests compute
the same pixels from the same formulas, so keep the two in step."""
import os
import struct
import subprocess
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)


def png(name, width, height, bit_depth, colour_type, rows, extra=b"", interlace=0):
    header = struct.pack(">IIBBBBB", width, height, bit_depth, colour_type, 0, 0, interlace)
    data = b"".join(rows)
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + extra +
                chunk(b"IDAT", zlib.compress(data, 9)) + chunk(b"IEND", b""))


def rgb(x, y):
    return (x * 17 + 3) & 255, (y * 29 + 5) & 255, (x * y * 7) & 255


W, H = 7, 5


def rows8(pixel, width=W, height=H):
    # Filter type 0 on every row.
    return [b"\x00" + bytes(v for x in range(width) for v in pixel(x, y)) for y in range(height)]


png("rgb8.png", W, H, 8, 2, rows8(rgb))
png("rgba8.png", W, H, 8, 6, rows8(lambda x, y: rgb(x, y) + (((x + y) * 20) & 255,)))
png("gray8.png", W, H, 8, 0, rows8(lambda x, y: ((x * 30 + y) & 255,)))
png("rgb16.png", W, H, 16, 2,
    [b"\x00" + b"".join(struct.pack(">HHH", x * 9000, y * 16000, 65535 - x * y * 2000)
                        for x in range(W)) for y in range(H)])
# Four palette entries, the second half transparent: index (x + y) % 4.
palette = [(255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 255)]
png("palette8.png", W, H, 8, 3, rows8(lambda x, y: ((x + y) % 4,)),
    extra=chunk(b"PLTE", bytes(v for c in palette for v in c)) + chunk(b"tRNS", bytes([255, 255, 128, 0])))


def adam7_rows(pixel):
    # The seven passes of an interlaced image, each with its own rows.
    passes = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
    out = []
    for x0, y0, dx, dy in passes:
        xs = list(range(x0, W, dx))
        for y in range(y0, H, dy):
            if xs:
                out.append(b"\x00" + bytes(v for x in xs for v in pixel(x, y)))
    return out


png("rgb8interlaced.png", W, H, 8, 2, adam7_rows(rgb), interlace=1)
# A header that claims far more pixels than a texture may have, and one row of data.
with open(os.path.join(HERE, "huge.png"), "wb") as f:
    f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 100000, 100000, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(bytes(300001), 9)) + chunk(b"IEND", b""))


def ppm(width, height, pixel):
    return b"P6\n%d %d\n255\n" % (width, height) + bytes(
        v for y in range(height) for x in range(width) for v in pixel(x, y))


def cjpeg(name, source, *options):
    out = subprocess.run(["cjpeg", *options], input=source, stdout=subprocess.PIPE, check=True).stdout
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(out)


def smooth(x, y):
    return 40 + x * 6, 60 + y * 8, 200 - x * 3 - y * 2


cjpeg("flat.jpg", ppm(16, 16, lambda x, y: (200, 100, 50)), "-quality", "90")
cjpeg("smooth.jpg", ppm(13, 9, smooth), "-quality", "100", "-sample", "1x1")
cjpeg("smoothGray.jpg", ppm(13, 9, smooth), "-quality", "100", "-grayscale")
cjpeg("smoothProgressive.jpg", ppm(13, 9, smooth), "-quality", "100", "-sample", "1x1", "-progressive")
