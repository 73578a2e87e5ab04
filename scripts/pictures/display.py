"""A display without a screen, and pictures of what is on it."""

import os
import re
import struct
import subprocess
import tempfile
from pathlib import Path

import png

WINDOW = "Library Consistency Management"


class Display:
    """An X server of its own for the time of its scope."""

    def __init__(self, width, height):
        self.folder = tempfile.TemporaryDirectory(prefix="quillon-display-")
        reading, writing = os.pipe()
        # With -fbdir the pixels lie in a file, in the format of a window dump. A server that resets
        # itself when nobody is connected brings its pointer back.
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24",
             "-nolisten", "tcp", "-noreset", "-fbdir", self.folder.name],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        self.environment = dict(os.environ, DISPLAY=f":{number}",
                                XDG_RUNTIME_DIR=self.folder.name)
        self.environment.pop("WAYLAND_DISPLAY", None)
        # The pointer has no business in a picture.
        subprocess.run(["xdotool", "mousemove", str(width), str(height)], env=self.environment,
                       check=True)

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        self.server.terminate()
        self.server.wait()
        self.folder.cleanup()

    def window(self):
        """Its number, or nothing while there is none."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", WINDOW],
                               env=self.environment, capture_output=True, text=True, check=False)
        return found.stdout.split()[0] if found.stdout.split() else None

    def save_window(self, path):
        told = subprocess.run(["xdotool", "getwindowgeometry", "--shell", self.window()],
                              env=self.environment, capture_output=True, text=True, check=True)
        place = {key: int(value) for key, value in re.findall(r"(\w+)=(\d+)", told.stdout)}
        rows = pixel_rows((Path(self.folder.name) / "Xvfb_screen0").read_bytes())
        left, right = 3 * place["X"], 3 * (place["X"] + place["WIDTH"])
        png.write(path, place["WIDTH"],
                  [row[left:right] for row in rows[place["Y"]:place["Y"] + place["HEIGHT"]]])


def pixel_rows(dump):
    """The rows of a window dump of 32 bits a pixel, blue first, as bytes of red, green, blue."""
    fields = struct.unpack(">25I", dump[:100])
    size, height, bits, line, colours = (fields[i] for i in (0, 5, 11, 12, 19))
    if bits != 32:
        raise ValueError(f"a dump with {bits} bits a pixel")
    pixels = memoryview(dump)[size + 12 * colours:]
    rows = []
    for number in range(height):
        row = bytes(pixels[number * line:(number + 1) * line])
        mixed = bytearray(len(row) // 4 * 3)
        mixed[0::3], mixed[1::3], mixed[2::3] = row[2::4], row[1::4], row[0::4]
        rows.append(bytes(mixed))
    return rows
