#!/usr/bin/env python3
"""Draws the host's small interface icons (palette and arrow icons) as PNG files.

The icons are simple geometric drawings so they can be regenerated without an image editor:
python3 scripts/make-icons.py resources/icons
"""
import math
import os
import struct
import sys
import zlib

SIZE = 32


def png(path, pixels):
    raw = b"".join(b"\x00" + bytes(c for px in row for c in px) for row in pixels)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                  chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def canvas():
    return [[(0, 0, 0, 0) for _ in range(SIZE)] for _ in range(SIZE)]


def rect(img, x0, y0, x1, y1, color):
    for y in range(max(0, y0), min(SIZE, y1)):
        for x in range(max(0, x0), min(SIZE, x1)):
            img[y][x] = color


def disc(img, cx, cy, r, color):
    for y in range(SIZE):
        for x in range(SIZE):
            if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
                img[y][x] = color


def line(img, x0, y0, x1, y1, width, color):
    steps = int(max(abs(x1 - x0), abs(y1 - y0)) * 3) + 1
    for i in range(steps + 1):
        t = i / steps
        disc(img, x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, width / 2, color)


def triangle(img, points, color):
    (ax, ay), (bx, by), (cx, cy) = points
    for y in range(SIZE):
        for x in range(SIZE):
            px, py = x + 0.5, y + 0.5
            d1 = (px - bx) * (ay - by) - (ax - bx) * (py - by)
            d2 = (px - cx) * (by - cy) - (bx - cx) * (py - cy)
            d3 = (px - ax) * (cy - ay) - (cx - ax) * (py - ay)
            if not ((d1 < 0 or d2 < 0 or d3 < 0) and (d1 > 0 or d2 > 0 or d3 > 0)):
                img[y][x] = color


BLUE = (74, 144, 217, 255)
ORANGE = (232, 146, 52, 255)
GREY = (200, 200, 200, 255)
RED = (214, 64, 64, 255)


def node_graph():
    img = canvas()
    line(img, 10, 9, 22, 23, 2.5, GREY)
    line(img, 10, 23, 22, 23, 2.5, GREY)
    rect(img, 3, 4, 15, 13, BLUE)
    rect(img, 3, 19, 15, 28, BLUE)
    rect(img, 18, 18, 30, 28, ORANGE)
    return img


def node_properties():
    img = canvas()
    rect(img, 5, 3, 27, 29, GREY)
    for row, width in ((8, 16), (14, 12), (20, 16)):
        rect(img, 9, row, 9 + width, row + 3, BLUE)
    return img


def delete_all():
    img = node_properties()
    line(img, 8, 8, 24, 24, 3, RED)
    line(img, 24, 8, 8, 24, 3, RED)
    return img


def arrow(left):
    img = canvas()
    points = [(22, 6), (22, 26), (8, 16)] if left else [(10, 6), (10, 26), (24, 16)]
    triangle(img, points, GREY)
    return img


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else "resources/icons"
    os.makedirs(folder, exist_ok=True)
    icons = {
        "NodeGraph.png": node_graph(),
        "NodeProperties.png": node_properties(),
        "NodePropertiesDeleteAll.png": delete_all(),
        "Left.png": arrow(True),
        "Right.png": arrow(False),
    }
    for name, pixels in icons.items():
        png(os.path.join(folder, name), pixels)


if __name__ == "__main__":
    main()
