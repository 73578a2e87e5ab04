"""PNG files from rows of red, green and blue bytes."""

import struct
import zlib


def write(path, width, rows):
    """Each row has 3 * width bytes."""
    rows = list(rows)

    def chunk(kind, content):
        return (struct.pack(">I", len(content)) + kind + content
                + struct.pack(">I", zlib.crc32(kind + content)))

    header = struct.pack(">IIBBBBB", width, len(rows), 8, 2, 0, 0, 0)
    # The 0 before each row: it is stored as it is, without a filter.
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels)
                     + chunk(b"IEND", b""))
