#!/usr/bin/env python3
"""Draws the marquee's busy strip, resources/ProgressBar_green.gif: a grey trough in
which a block of green segments travels from left to right and wraps. Plain Python (no
imaging library): the frames are written as a GIF89a with a four-colour palette and
literal-only LZW codes.

Usage: scripts/make-progress-gif.py [output]   (default: resources/ProgressBar_green.gif)
"""
import struct
import sys
from pathlib import Path

WIDTH, HEIGHT = 150, 40
FRAMES = 12
DELAY = 8  # hundredths of a second per frame
SEGMENT, GAP, BLOCK = 10, 3, 4  # segment width, gap between segments, segments per block
PALETTE = [(0xE6, 0xE6, 0xE6), (0xA0, 0xA0, 0xA0), (0x06, 0xB0, 0x25), (0x7A, 0xDB, 0x8A)]
TROUGH, EDGE, GREEN, LIGHT = range(4)


def frame(index):
    pixels = [[TROUGH] * WIDTH for _ in range(HEIGHT)]
    for x in range(WIDTH):
        pixels[0][x] = pixels[HEIGHT - 1][x] = EDGE
    for y in range(HEIGHT):
        pixels[y][0] = pixels[y][WIDTH - 1] = EDGE
    step = SEGMENT + GAP
    travel = WIDTH + BLOCK * step
    start = index * travel // FRAMES - BLOCK * step
    for s in range(BLOCK):
        left = start + s * step
        for x in range(max(left, 2), min(left + SEGMENT, WIDTH - 2)):
            for y in range(4, HEIGHT - 4):
                pixels[y][x] = LIGHT if y < 12 else GREEN
    return [p for row in pixels for p in row]


def lzw_literals(indices, min_code_size=7):
    """LZW data that uses literal codes only, with a clear code each time before the
    decoder's table would widen the codes, so every code is a byte (min_code_size 7)."""
    clear, end = 1 << min_code_size, (1 << min_code_size) + 1
    width = min_code_size + 1
    room = (1 << min_code_size) - 2  # one short of the table's first widening
    codes = []
    for i, value in enumerate(indices):
        if i % room == 0:
            codes.append(clear)
        codes.append(value)
    codes.append(end)
    out, acc, bits = bytearray(), 0, 0
    for code in codes:
        acc |= code << bits
        bits += width
        while bits >= 8:
            out.append(acc & 0xFF)
            acc >>= 8
            bits -= 8
    if bits:
        out.append(acc & 0xFF)
    blocks = bytearray([min_code_size])
    for i in range(0, len(out), 255):
        chunk = out[i:i + 255]
        blocks += bytes([len(chunk)]) + chunk
    return bytes(blocks + b"\x00")


def gif(frames, delay):
    data = bytearray(b"GIF89a")
    data += struct.pack("<HHBBB", WIDTH, HEIGHT, 0xF1, 0, 0)  # global table of 4 colours
    for rgb in PALETTE:
        data += bytes(rgb)
    data += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"  # loop for ever
    for pixels in frames:
        data += b"\x21\xF9\x04" + struct.pack("<BHB", 0x04, delay, 0) + b"\x00"
        data += b"\x2C" + struct.pack("<HHHHB", 0, 0, WIDTH, HEIGHT, 0)
        data += lzw_literals(pixels)
    return bytes(data + b"\x3B")


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent / "resources" / "ProgressBar_green.gif"
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(gif([frame(i) for i in range(FRAMES)], DELAY))


if __name__ == "__main__":
    main()
