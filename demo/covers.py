"""Draws album covers: GIF images of a few shapes in two colours that blend, different for every
album and the same every time."""

import colorsys
import math
import random

SIZE = 240
COLOURS = 128
# Codes of eight bits from end to end: the table of a GIF's compression is cleared before it would
# need longer ones, so that each code is one byte and stands for one pixel.
CODE_BITS = 7
CLEAR, END = 1 << CODE_BITS, (1 << CODE_BITS) + 1
RUN = (1 << CODE_BITS) - 2


def palette(hue, other):
    """From one colour over to the other, as bytes."""
    colours = bytearray()
    for step in range(COLOURS):
        share = step / (COLOURS - 1)
        rgb = colorsys.hsv_to_rgb((hue + share * other) % 1, 0.75 - 0.35 * share,
                                  0.25 + 0.7 * share)
        colours += bytes(round(255 * part) for part in rgb)
    return bytes(colours)


def rings(dice):
    x, y = dice.uniform(-0.2, 1.2), dice.uniform(-0.2, 1.2)
    waves = dice.randint(3, 9)
    return lambda u, v: 0.5 + 0.5 * math.sin(waves * 2 * math.pi * math.hypot(u - x, v - y))


def stripes(dice):
    angle = dice.uniform(0, math.pi)
    count = dice.randint(2, 8)
    return lambda u, v: (count * (u * math.cos(angle) + v * math.sin(angle))) % 1


def moon(dice):
    x, y, radius = dice.uniform(0.3, 0.7), dice.uniform(0.3, 0.6), dice.uniform(0.15, 0.3)

    def shade(u, v):
        distance = math.hypot(u - x, v - y)
        return 1 - 0.3 * (v - y + radius) if distance < radius else 0.6 * v

    return shade


def hills(dice):
    ridges = [(dice.uniform(2, 9), dice.uniform(0, 6), 0.35 + 0.2 * ridge) for ridge in range(3)]

    def shade(u, v):
        below = sum(v > height + 0.06 * math.sin(wave * u + start)
                    for wave, start, height in ridges)
        return 1 - v / 3 if below == 0 else 0.6 - 0.2 * below

    return shade


def gif(shade, colours):
    """The image as the bytes of a GIF file."""
    image = bytearray(b"GIF89a")
    image += SIZE.to_bytes(2, "little") * 2 + bytes([0x80 | CODE_BITS - 1, 0, 0]) + colours
    image += b"," + bytes(4) + SIZE.to_bytes(2, "little") * 2 + bytes([0, CODE_BITS])
    codes = bytearray()
    for pixel in range(SIZE * SIZE):
        if pixel % RUN == 0:
            codes.append(CLEAR)
        light = shade(pixel % SIZE / SIZE, pixel // SIZE / SIZE)
        codes.append(max(0, min(COLOURS - 1, round(light * (COLOURS - 1)))))
    codes.append(END)
    for start in range(0, len(codes), 255):
        block = codes[start:start + 255]
        image += bytes([len(block)]) + block
    return bytes(image) + b"\0;"


def draw(artist, album):
    """A cover for an album."""
    dice = random.Random(f"{artist} - {album}")
    shape = dice.choice([rings, stripes, moon, hills])(dice)
    return gif(shape, palette(dice.random(), dice.uniform(-0.3, 0.3)))
