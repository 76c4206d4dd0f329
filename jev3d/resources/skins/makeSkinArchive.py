#!/usr/bin/env python3
"""Draws the library's widget skins and icons and packs them into the ZIP archive that the
library embeds as its default resource.

    makeSkinArchive.py <archive.zip> <source.cpp>

Writes the archive and a C++ source that holds its bytes. Everything is drawn here, from
the shapes below; the output is the same on every run (fixed entry times, no randomness),
so builds are reproducible.

Skin sheets are 256 x 256 and hold 16 x 16 tiles that widgets stretch as nine-slices with
4-pixel borders. Tile positions count from the sheet's bottom-left corner, as the GUI's
coordinates do and as textures are stored, so tile (48, 0) lies in the bottom 16 rows of
the picture. Border rings and centres are flat colours so that a widget drawn with nearest
sampling shows exactly the tile's colours.
"""
import io
import math
import struct
import sys
import zipfile
import zlib

SHEET = 256
TILE = 16
BORDER = 4


class canvas:
    """An RGBA picture with its origin at the bottom left."""

    def __init__(self, width, height, fill=(0, 0, 0, 0)):
        self.width = width
        self.height = height
        self.pixels = [[tuple(fill)] * width for _ in range(height)]

    def put(self, x, y, colour):
        if 0 <= x < self.width and 0 <= y < self.height:
            if len(colour) == 3:
                colour = tuple(colour) + (255,)
            self.pixels[y][x] = tuple(colour)

    def rect(self, x0, y0, w, h, colour):
        for y in range(y0, y0 + h):
            for x in range(x0, x0 + w):
                self.put(x, y, colour)

    def disc(self, cx, cy, r, colour):
        for y in range(int(cy - r - 1), int(cy + r + 2)):
            for x in range(int(cx - r - 1), int(cx + r + 2)):
                if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
                    self.put(x, y, colour)

    def ring(self, cx, cy, r, width, colour):
        for y in range(int(cy - r - 1), int(cy + r + 2)):
            for x in range(int(cx - r - 1), int(cx + r + 2)):
                d = math.hypot(x + 0.5 - cx, y + 0.5 - cy)
                if r - width <= d <= r:
                    self.put(x, y, colour)

    def line(self, x0, y0, x1, y1, width, colour):
        steps = int(max(abs(x1 - x0), abs(y1 - y0)) * 2) + 1
        for i in range(steps + 1):
            t = i / steps
            self.disc(x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, width / 2, colour)

    def polygon(self, points, colour):
        ys = [p[1] for p in points]
        for y in range(int(min(ys)), int(max(ys)) + 1):
            yc = y + 0.5
            crossings = []
            for i, (ax, ay) in enumerate(points):
                bx, by = points[(i + 1) % len(points)]
                if (ay <= yc < by) or (by <= yc < ay):
                    crossings.append(ax + (yc - ay) * (bx - ax) / (by - ay))
            crossings.sort()
            for a, b in zip(crossings[0::2], crossings[1::2]):
                for x in range(int(math.floor(a + 0.5)), int(math.floor(b + 0.5))):
                    self.put(x, y, colour)

    def png(self):
        def chunk(kind, data):
            body = kind + data
            return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

        rows = []
        for y in reversed(range(self.height)):  # PNG rows run from the top
            rows.append(b"\x00" + bytes(v for p in self.pixels[y] for v in p))
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 6, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                chunk(b"IDAT", zlib.compress(b"".join(rows), 9)) + chunk(b"IEND", b""))


def shade(colour, amount):
    return tuple(max(0, min(255, c + amount)) for c in colour[:3]) + (colour[3] if len(colour) > 3 else 255,)


# A skin style: the outline (outermost ring), the border (the other three rings) and the
# centre of each button state, plus the colours of marks drawn on tiles.
STYLES = {
    "defaultSkin.png": dict(
        outline=(70, 70, 70), border=(200, 200, 200), centre=(235, 235, 235),
        down=(180, 180, 180), checked=(210, 220, 235), mark=(30, 30, 30), accent=(90, 130, 200),
        background=(160, 160, 160, 255), bevel=True),
    "plastiqueSkin.png": dict(
        outline=(40, 60, 90), border=(150, 175, 210), centre=(215, 228, 245),
        down=(120, 150, 195), checked=(180, 205, 240), mark=(20, 40, 80), accent=(60, 110, 190),
        background=(120, 140, 170, 255), bevel=True),
    "xpSkin.png": dict(
        outline=(0, 60, 160), border=(80, 140, 230), centre=(245, 242, 225),
        down=(225, 220, 190), checked=(250, 230, 160), mark=(0, 40, 120), accent=(40, 170, 60),
        background=(60, 110, 200, 255), bevel=False),
    "flatskin.png": dict(
        outline=(120, 120, 120), border=(120, 120, 120), centre=(250, 250, 250),
        down=(205, 205, 205), checked=(220, 235, 220), mark=(40, 40, 40), accent=(0, 150, 136),
        background=(240, 240, 240, 255), bevel=False),
    "ragSkin.png": dict(
        outline=(60, 35, 15), border=(150, 100, 55), centre=(225, 200, 160),
        down=(190, 160, 115), checked=(235, 210, 130), mark=(60, 30, 10), accent=(170, 60, 30),
        background=(110, 75, 40, 255), bevel=False, weave=True),
    "ibrid.png": dict(
        outline=(20, 20, 20), border=(230, 120, 20), centre=(60, 60, 65),
        down=(40, 40, 45), checked=(90, 70, 40), mark=(240, 240, 240), accent=(230, 120, 20),
        background=(45, 45, 50, 255), bevel=True),
}


def tile(sheet, u, v, style, centre, border=None, outline=None):
    """A nine-slice tile: outline ring, three border rings, an 8 x 8 centre. Bevelled styles
    light the upper and left border and darken the lower and right, ring by ring from the
    corners, so that the corner blocks stay unscaled pictures too."""
    border = border or style["border"]
    outline = outline or style["outline"]
    sheet.rect(u, v, TILE, TILE, outline)
    for x in range(1, TILE - 1):
        for y in range(1, TILE - 1):
            ring = min(x, y, TILE - 1 - x, TILE - 1 - y)
            if ring >= BORDER:
                colour = centre
            elif style.get("bevel"):
                upperLeft = (TILE - 1 - y) <= x  # nearer the top or left edge
                colour = shade(border, 35 if upperLeft else -35)
            elif style.get("weave") and (x + y) % 2 == 0:
                colour = shade(border, -20)
            else:
                colour = border
            sheet.put(u + x, v + y, colour)


def skin(style):
    s = canvas(SHEET, SHEET)
    # Buttons: normal, down, checked.
    tile(s, 48, 0, style, style["centre"])
    tile(s, 64, 0, style, style["down"])
    tile(s, 80, 0, style, style["checked"])
    # Window buttons: normal, down, checked, with a cross.
    for v, centre in ((48, style["centre"]), (64, style["down"]), (80, style["checked"])):
        tile(s, 0, v, style, centre, border=style["accent"])
    # Tooltip: pale, with no bevel.
    plain = dict(style, bevel=False, weave=False)
    tile(s, 32, 0, plain, shade(style["centre"], 10), border=shade(style["border"], 20))
    # Item: a flat strip with a thin outline.
    tile(s, 176, 0, plain, style["centre"], border=style["centre"], outline=style["border"])
    # Check mark and item expander.
    tile(s, 0, 16, plain, style["centre"])
    s.line(3, 16 + 8, 6, 16 + 4, 2, style["mark"])
    s.line(6, 16 + 4, 12, 16 + 12, 2, style["mark"])
    # Radio buttons: unchecked and checked.
    for u, v, dot in ((64, 16, False), (96, 16, True)):
        s.disc(u + 8, v + 8, 7.5, style["outline"])
        s.disc(u + 8, v + 8, 6.5, style["centre"])
        if dot:
            s.disc(u + 8, v + 8, 3, style["mark"])
    # Progress bar fill.
    tile(s, 144, 0, style, style["accent"], border=shade(style["accent"], -30))
    # Window frame and its parts in a row: frame, title bar, client area, resize grip,
    # close, restore, minimise, scroll bar.
    frame = style["background"]
    tile(s, 0, 160, style, frame[:3])
    tile(s, 16, 160, style, style["accent"])
    tile(s, 32, 160, plain, style["centre"], border=style["centre"])
    tile(s, 48, 160, style, frame[:3])
    for i in range(3):
        s.line(50 + 4 * i, 162, 61, 173 - 4 * i, 1, style["mark"])
    for u in (64, 80, 96):
        tile(s, u, 160, style, style["centre"], border=style["accent"])
    s.line(68, 164, 75, 171, 2, style["mark"])
    s.line(68, 171, 75, 164, 2, style["mark"])
    s.rect(84, 164, 8, 8, style["mark"])
    s.rect(86, 166, 4, 4, style["centre"])
    s.rect(100, 164, 8, 2, style["mark"])
    tile(s, 112, 160, style, shade(frame[:3], 20))
    return s


# Icons: drawn on a 32-unit grid and scaled to the icon's size.
def icon(size, draw):
    c = canvas(size, size)
    draw(c, size / 32.0)
    return c


def arrow(direction):
    def draw(c, k):
        shapes = {
            "right": [(8, 6), (26, 16), (8, 26)],
            "left": [(24, 6), (6, 16), (24, 26)],
            "up": [(6, 9), (16, 25), (26, 9)],
            "down": [(6, 23), (16, 7), (26, 23)],
        }
        c.polygon([(x * k, y * k) for x, y in shapes[direction]], (40, 90, 170))
    return draw


def page(c, k, colour=(250, 250, 250)):
    c.rect(int(7 * k), int(3 * k), int(18 * k), int(26 * k), (90, 90, 90))
    c.rect(int(8 * k), int(4 * k), int(16 * k), int(24 * k), colour)
    for y in (20, 16, 12):
        c.rect(int(11 * k), int(y * k), int(10 * k), max(1, int(k)), (150, 150, 150))


def plus(c, k, colour):
    c.rect(int(6 * k), int(14 * k), int(20 * k), int(4 * k), colour)
    c.rect(int(14 * k), int(6 * k), int(4 * k), int(20 * k), colour)


def icons():
    red, green, blue = (210, 40, 40), (40, 160, 60), (40, 80, 210)
    dark, grey = (50, 50, 50), (150, 150, 150)

    def axis(c, k):
        c.line(6 * k, 6 * k, 28 * k, 6 * k, 2 * k, red)
        c.line(6 * k, 6 * k, 6 * k, 28 * k, 2 * k, green)
        c.line(6 * k, 6 * k, 18 * k, 18 * k, 2 * k, blue)

    def bunny(c, k):
        body = (225, 215, 200)
        c.disc(17 * k, 11 * k, 9 * k, body)
        c.disc(11 * k, 19 * k, 6 * k, body)
        c.polygon([(7 * k, 22 * k), (6 * k, 31 * k), (10 * k, 23 * k)], body)
        c.polygon([(11 * k, 23 * k), (13 * k, 31 * k), (14 * k, 22 * k)], body)
        c.disc(9 * k, 20 * k, 1.2 * k, dark)
        c.disc(26 * k, 8 * k, 2.5 * k, (250, 250, 250))

    def cut(c, k):
        c.line(10 * k, 28 * k, 20 * k, 12 * k, 2 * k, grey)
        c.line(22 * k, 28 * k, 12 * k, 12 * k, 2 * k, grey)
        c.ring(10 * k, 8 * k, 5 * k, 2 * k, red)
        c.ring(22 * k, 8 * k, 5 * k, 2 * k, red)

    def copy(c, k):
        c.rect(int(4 * k), int(10 * k), int(16 * k), int(20 * k), dark)
        c.rect(int(5 * k), int(11 * k), int(14 * k), int(18 * k), (235, 235, 235))
        c.rect(int(12 * k), int(2 * k), int(16 * k), int(20 * k), dark)
        c.rect(int(13 * k), int(3 * k), int(14 * k), int(18 * k), (250, 250, 250))

    def paste(c, k):
        c.rect(int(5 * k), int(3 * k), int(22 * k), int(25 * k), (150, 100, 50))
        c.rect(int(11 * k), int(25 * k), int(10 * k), int(5 * k), grey)
        c.rect(int(12 * k), int(6 * k), int(14 * k), int(16 * k), (250, 250, 250))

    def exitIcon(c, k):
        c.rect(int(4 * k), int(3 * k), int(14 * k), int(26 * k), (120, 80, 40))
        c.line(14 * k, 16 * k, 28 * k, 16 * k, 3 * k, red)
        c.polygon([(22 * k, 10 * k), (30 * k, 16 * k), (22 * k, 22 * k)], red)

    def fileOpen(c, k):
        c.rect(int(3 * k), int(5 * k), int(26 * k), int(19 * k), (200, 160, 60))
        c.rect(int(3 * k), int(24 * k), int(10 * k), int(3 * k), (200, 160, 60))
        c.polygon([(7 * k, 5 * k), (29 * k, 5 * k), (25 * k, 18 * k), (3 * k, 18 * k)],
                  (240, 200, 90))

    def fileNew(c, k):
        page(c, k)
        c.disc(24 * k, 24 * k, 5 * k, (250, 210, 40))

    def fileSave(c, k):
        c.rect(int(4 * k), int(4 * k), int(24 * k), int(24 * k), blue)
        c.rect(int(9 * k), int(17 * k), int(14 * k), int(10 * k), (240, 240, 240))
        c.rect(int(10 * k), int(4 * k), int(12 * k), int(8 * k), dark)

    def fileSaveAs(c, k):
        fileSave(c, k)
        c.line(18 * k, 8 * k, 29 * k, 19 * k, 3 * k, (240, 180, 40))

    def fullscreen(c, k):
        c.rect(int(3 * k), int(3 * k), int(26 * k), int(26 * k), dark)
        c.rect(int(5 * k), int(5 * k), int(22 * k), int(22 * k), (170, 200, 240))
        for (x0, y0, x1, y1) in ((7, 7, 13, 13), (25, 25, 19, 19), (7, 25, 13, 19), (25, 7, 19, 13)):
            c.line(x0 * k, y0 * k, x1 * k, y1 * k, 2 * k, dark)

    def helpIcon(c, k):
        c.disc(16 * k, 16 * k, 14 * k, blue)
        c.ring(16 * k, 19 * k, 5 * k, 2.5 * k, (255, 255, 255))
        c.rect(int(15 * k), int(9 * k), int(3 * k), int(6 * k), (255, 255, 255))
        c.rect(int(15 * k), int(4 * k), int(3 * k), int(3 * k), (255, 255, 255))

    def listAdd(c, k):
        plus(c, k, green)

    def listRemove(c, k):
        c.rect(int(6 * k), int(14 * k), int(20 * k), int(4 * k), red)

    def mouse(c, k):
        c.disc(16 * k, 12 * k, 9 * k, grey)
        c.rect(int(7 * k), int(12 * k), int(18 * k), int(10 * k), grey)
        c.disc(16 * k, 22 * k, 9 * k, grey)
        c.rect(int(15 * k), int(20 * k), max(1, int(2 * k)), int(11 * k), dark)

    def printIcon(c, k):
        c.rect(int(9 * k), int(18 * k), int(14 * k), int(11 * k), (250, 250, 250))
        c.rect(int(3 * k), int(8 * k), int(26 * k), int(12 * k), grey)
        c.rect(int(8 * k), int(3 * k), int(16 * k), int(8 * k), (250, 250, 250))
        c.disc(25 * k, 16 * k, 1.5 * k, green)

    def turn(forward):
        def draw(c, k):
            c.ring(16 * k, 14 * k, 10 * k, 3 * k, blue)
            c.rect(int((16 if forward else 0) * k), 0, int(16 * k), int(14 * k), (0, 0, 0, 0))
            tip = [(20 * k, 14 * k), (32 * k, 14 * k), (26 * k, 6 * k)] if forward else \
                  [(0, 14 * k), (12 * k, 14 * k), (6 * k, 6 * k)]
            c.polygon(tip, blue)
        return draw

    def search(c, k):
        c.ring(13 * k, 19 * k, 9 * k, 3 * k, dark)
        c.disc(13 * k, 19 * k, 6 * k, (200, 230, 250))
        c.line(19 * k, 12 * k, 28 * k, 3 * k, 4 * k, dark)

    def refresh(c, k):
        c.ring(16 * k, 16 * k, 12 * k, 3.5 * k, green)
        c.rect(int(16 * k), int(16 * k), int(16 * k), int(4 * k), (0, 0, 0, 0))
        c.polygon([(20 * k, 22 * k), (31 * k, 22 * k), (26 * k, 13 * k)], green)

    def trackball(c, k):
        c.disc(16 * k, 16 * k, 13 * k, (90, 140, 220))
        c.ring(16 * k, 16 * k, 13 * k, 2 * k, dark)
        c.line(3 * k, 16 * k, 29 * k, 16 * k, 1.5 * k, (240, 240, 240))
        c.line(16 * k, 3 * k, 16 * k, 29 * k, 1.5 * k, (240, 240, 240))

    def tools(c, k):
        c.line(6 * k, 6 * k, 22 * k, 22 * k, 4 * k, grey)
        c.ring(24 * k, 24 * k, 6 * k, 3 * k, grey)
        c.line(26 * k, 6 * k, 10 * k, 22 * k, 3 * k, (150, 90, 40))
        c.rect(int(4 * k), int(22 * k), int(10 * k), int(6 * k), dark)

    def null(c, k):
        c.ring(16 * k, 16 * k, 12 * k, 3 * k, grey)
        c.line(8 * k, 8 * k, 24 * k, 24 * k, 3 * k, grey)

    return {
        "axis.png": (32, axis), "bunny.png": (32, bunny), "edit_cut.png": (32, cut),
        "edit_copy.png": (32, copy), "edit_paste.png": (32, paste), "exit.png": (32, exitIcon),
        "file_open.png": (32, fileOpen), "file_new.png": (32, fileNew),
        "file_save_as.png": (32, fileSaveAs), "file_save.png": (32, fileSave),
        "help.png": (32, helpIcon), "fullscreen.png": (32, fullscreen),
        "list_remove.png": (32, listRemove), "list_add.png": (32, listAdd),
        "print.png": (32, printIcon), "mouse.png": (32, mouse), "undo.png": (32, turn(False)),
        "redo.png": (32, turn(True)), "search.png": (32, search), "refresh.png": (32, refresh),
        "trackball.png": (32, trackball), "tools.png": (32, tools), "null.png": (32, null),
        "arrow_right.png": (32, arrow("right")), "arrow_left.png": (32, arrow("left")),
        "arrow_down.png": (16, arrow("down")), "arrow_up.png": (16, arrow("up")),
    }


def logo():
    """The library's mark: a wireframe triangle fan over a dark plate."""
    c = canvas(128, 64, (30, 34, 40, 255))
    centre = (32, 32)
    ring = [(32 + 24 * math.cos(a * math.pi / 3), 32 + 24 * math.sin(a * math.pi / 3)) for a in range(6)]
    for i, p in enumerate(ring):
        q = ring[(i + 1) % 6]
        c.polygon([centre, p, q], (60 + 25 * i, 120, 200 - 20 * i))
        c.line(p[0], p[1], q[0], q[1], 1.5, (240, 240, 240))
        c.line(centre[0], centre[1], p[0], p[1], 1, (240, 240, 240))
    for i, x in enumerate(range(64, 120, 14)):
        c.rect(x, 20, 10, 24 - 5 * i, (230, 120, 20))
    return c


def archive():
    entries = {"logo.png": logo()}
    for name, style in STYLES.items():
        entries[name] = skin(style)
    for name, (size, draw) in icons().items():
        entries[name] = icon(size, draw)
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as z:
        for name in sorted(entries):
            info = zipfile.ZipInfo(name, date_time=(2020, 1, 1, 0, 0, 0))
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, entries[name].png())
    return out.getvalue()


def source(data):
    lines = ["// Made by makeSkinArchive.py at build time; do not edit.",
             '#include "jev3d/resources/internal/defaultArchive.h"', "",
             "namespace JEV {", "namespace CORE {", "namespace INTERNAL {", "namespace {",
             "const unsigned char bytes[] = {"]
    for i in range(0, len(data), 24):
        lines.append("  " + ",".join(str(b) for b in data[i:i + 24]) + ",")
    lines += ["};", "}  // namespace", "",
              "const unsigned char* defaultArchiveData() { return bytes; }",
              "size_t defaultArchiveSize() { return sizeof(bytes); }", "",
              "}  // namespace INTERNAL", "}  // namespace CORE", "}  // namespace JEV", ""]
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: makeSkinArchive.py <archive.zip> <source.cpp>")
    data = archive()
    with open(sys.argv[1], "wb") as f:
        f.write(data)
    with open(sys.argv[2], "w") as f:
        f.write(source(data))


if __name__ == "__main__":
    main()
