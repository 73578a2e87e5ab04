"""Makes small MP3 files that every player accepts: MPEG-1 Layer III frames of silence, and behind
them, if wanted, an ID3 tag of version 1 or 1.1; before them one of version 2.3."""

import os

SAMPLE_RATE = 44100
SAMPLES_PER_FRAME = 1152
BIT_RATE = 32000
FRAME_SIZE = 144 * BIT_RATE // SAMPLE_RATE
# Sync word, MPEG-1, Layer III, no checksum; 32 kbit/s at 44.1 kHz, not padded; mono, original.
FRAME_HEADER = bytes([0xFF, 0xFB, 0x10, 0xC4])
# Side information and main data of zeros: no coefficient is coded, so the frame is silent.
SILENT_FRAME = FRAME_HEADER + bytes(FRAME_SIZE - len(FRAME_HEADER))


def silence(seconds):
    frames = round(seconds * SAMPLE_RATE / SAMPLES_PER_FRAME)
    return SILENT_FRAME * max(frames, 1)


def tag(song="", artist="", album="", year="", comment="", track=None, genre=255,
        encoding="cp1252"):
    """128 bytes. With a track number the comment has 28 bytes and the tag is a version 1.1 one."""

    def field(text, size):
        return text.encode(encoding, "replace")[:size].ljust(size, b"\0")

    remarks = field(comment, 30) if track is None else field(comment, 28) + bytes([0, track])
    return (b"TAG" + field(song, 30) + field(artist, 30) + field(album, 30) + field(year, 4)
            + remarks + bytes([genre]))


def tag2(frames, picture=b""):
    """A tag of version 2.3, which comes before the sound: texts by the names of their frames, and a
    front cover in JPEG."""

    def frame(name, text):
        content = b"\x01" + text.encode("utf-16")
        return name.encode() + len(content).to_bytes(4, "big") + bytes(2) + content

    content = b"".join(frame(name, text) for name, text in frames.items())
    if picture:
        cover = b"\0image/jpeg\0\3\0" + picture
        content += b"APIC" + len(cover).to_bytes(4, "big") + bytes(2) + cover
    size = bytes(len(content) >> shift & 0x7F for shift in (21, 14, 7, 0))
    return b"ID3" + bytes([3, 0, 0]) + size + content


def write(path, content, modified=None):
    """Writes a file, its folders too; `modified` is a POSIX time."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)
    if modified is not None:
        os.utime(path, (modified, modified))
