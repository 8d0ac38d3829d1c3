#!/usr/bin/env python3
"""Checks which key of the front panel is lit in a picture (PPM) of an example's window.

usage: check_picture.py PICTURE KEY

KEY is the number of the key that is to be lit, from the left; the other four must be dark. Prints
what is wrong and exits with 1. Only a corner of each key is looked at, where no label is.
"""

import sys

LIT, DARK, TEXT = (0xFF, 0xB3, 0x00), (0x3D, 0x44, 0x4D), (0x7C, 0xE0, 0xFF)
SIZE = (480, 200)

with open(sys.argv[1], "rb") as file:
    magic, width, height, _, pixels = file.read().split(maxsplit=4)
    # A pixel may look like the white space before it.
    file.seek(-3 * int(width) * int(height), 2)
    pixels = file.read()

wrong = []
if magic != b"P6" or (int(width), int(height)) != SIZE:
    sys.exit(f"{magic.decode()} of {width.decode()} x {height.decode()}")


def pixel(x, y):
    start = 3 * (y * SIZE[0] + x)
    return tuple(pixels[start:start + 3])


for key in range(1, 6):
    found, expected = pixel(20 + 90 * (key - 1) + 10, 126), LIT if key == int(sys.argv[2]) else DARK
    if found != expected:
        wrong.append(f"key {key} is {found} instead of {expected}")
# The name of the command is on the display, in whatever font.
if not any(pixel(x, y) == TEXT for x in range(20, 460) for y in range(20, 96)):
    wrong.append("the display is empty")
sys.exit("\n".join(wrong) or 0)
