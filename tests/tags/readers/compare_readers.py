#!/usr/bin/env python3
"""compare_readers.py TAG_TOOL   asks other readers about tags that this project writes, and this
project about tags that others write, field by field over a generated corpus."""

import random
import re
import subprocess
import sys
import tempfile
from pathlib import Path

from mutagen.id3 import COMM, TALB, TCON, TDRC, TIT2, TPE1, TRCK, MakeID3v1, ParseID3v1

WRITTEN_HERE = 4000
WRITTEN_BY_MUTAGEN = 2000
WRITTEN_BY_ID3V2 = 200
WRITTEN_IN_UTF8 = 1000
AT_A_TIME = 500
NO_GENRE = 255
FIELDS = ("song", "artist", "album", "year", "comment", "track", "genre")
LENGTHS = {"song": 30, "artist": 30, "album": 30, "year": 4, "comment": 28}

# Every printable character of the code page but "|", which ends a piece of a record.
CODE_PAGE = [bytes([byte]).decode("cp1252") for byte in [*range(0x21, 0x7F), *range(0xA1, 0x100)]
             if byte != ord("|")] + list("€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ ")


class Differs(Exception):
    pass


def require_equal(what, expected, actual):
    if expected != actual:
        raise Differs(f"{what}:\n  expected {expected!r}\n  actual   {actual!r}")


def is_utf8(data):
    """Whether this project reads a field of these bytes so; what its end has cut may be missing."""
    for cut in range(4):
        try:
            return data and not data[:len(data) - cut].decode("utf-8").isascii()
        except UnicodeDecodeError:
            continue
    return False


def random_text(chance, longest):
    """Without blanks at its ends, which the other readers take off, and nothing that happens to be
    UTF-8, which they do not know."""
    while True:
        length = chance.randint(0, longest)
        text = "".join(chance.choice(CODE_PAGE) for _ in range(length)).strip(" ")
        if not any(is_utf8(text.encode("cp1252")[:size]) for size in (4, 28, 30, longest)):
            return text


def random_fields(chance):
    """Texts may be longer than the tag has room for."""
    return {
        "song": random_text(chance, 36),
        "artist": random_text(chance, 36),
        "album": random_text(chance, 36),
        "year": str(chance.randint(1900, 2030)) if chance.random() < 0.8 else "",
        "comment": random_text(chance, 32),
        "track": chance.randint(0, 255),
        "genre": chance.choice([NO_GENRE, *range(148)]),
    }


def latin_1_fields(chance):
    """The same without what Latin-1 lacks: mutagen writes no more in these tags."""
    while True:
        fields = random_fields(chance)
        for name in ("song", "artist", "album", "comment"):
            fields[name] = "".join(c for c in fields[name] if ord(c) < 0x100).strip(" ")
        # What is left must not have become UTF-8 by that.
        if not any(is_utf8(fields[name].encode("latin-1")[:length])
                   for name, length in LENGTHS.items()):
            return fields


def cut(fields):
    """What is left of the fields in a tag."""
    kept = dict(fields)
    for name, length in LENGTHS.items():
        kept[name] = fields[name][:length].rstrip(" ")
    return kept


def sound(chance):
    """No tag can be seen in it: it has no capital T."""
    return bytes(chance.choice(b"\x00\xFFabcdefgh") for _ in range(chance.randint(1, 700)))


def older_tag(chance):
    """A tag of either version, filled with zero bytes or blanks."""
    fill = chance.choice([b"\0", b" "])
    marker = chance.choice([b"TAG", b"tag", b"Tag"])
    texts = b"".join(random_text(chance, length).encode("cp1252", "replace")[:length]
                     .ljust(length, fill) for length in (30, 30, 30, 4, 30))
    return marker + texts + bytes([chance.randint(0, 255)])


class Tool:
    """The project's own routines."""

    def __init__(self, program):
        self.program = program
        self.genres = {}

    def ask(self, what, lines):
        text = "".join(line + "\n" for line in lines).encode("utf-8")
        result = subprocess.run([self.program, what], input=text, capture_output=True, check=True)
        require_equal(f"log of tag_tool {what}", b"", result.stderr)
        answers = result.stdout.decode("utf-8").split("\n")[:-1]
        require_equal("number of answers", len(lines), len(answers))
        return answers

    def learn_genre_names(self, folder):
        """Reads them as any file's tag is read, so that a genre can be told by its name."""
        paths = []
        for number in range(148):
            path = folder / f"genre-{number}.mp3"
            path.write_bytes(b"x" + b"TAG".ljust(127, b"\0") + bytes([number]))
            paths.append(path)
        for number, record in enumerate(self.ask("read", map_to_text(paths))):
            self.genres[number] = record.split("|")[8]
        require_equal("number of genre names", 148, len(set(self.genres.values()) - {""}))
        self.genres[NO_GENRE] = ""

    def record(self, fields):
        track = str(fields["track"]) if fields["track"] else ""
        return "|".join(["TAG", fields["song"], fields["artist"], fields["album"], fields["year"],
                         fields["comment"], "", track, self.genres[fields["genre"]]])

    def fields(self, record):
        pieces = record.split("|")
        require_equal(f"pieces of {record!r}", 10, len(pieces))
        numbers = {name: number for number, name in self.genres.items()}
        values = [piece.rstrip(" ") for piece in pieces[1:6]]
        return dict(zip(FIELDS, [*values, int(pieces[7] or 0), numbers[pieces[8]]]))


def map_to_text(paths):
    return [str(path) for path in paths]


def latin_1(text):
    """As a reader shows it that takes the code page's bytes for Latin-1."""
    return text.encode("cp1252").decode("latin-1")


def mutagen_fields(data):
    frames = ParseID3v1(data[-128:])
    if frames is None:
        raise Differs("mutagen finds no tag")

    def text(name):
        return str(frames[name]) if name in frames else ""

    return {"song": text("TIT2"), "artist": text("TPE1"), "album": text("TALB"),
            "year": text("TDRC"), "comment": text("COMM"), "track": int(text("TRCK") or 0),
            "genre": int(frames["TCON"].text[0]) if "TCON" in frames else NO_GENRE}


LISTING = re.compile(
    rb"^Title  : (?P<song>.{30})  Artist: (?P<artist>.{30})\n"
    rb"Album  : (?P<album>.{30})  Year: (?P<year>.{0,4}), Genre: .* \((?P<genre>-?\d+)\)\n"
    rb"Comment: (?P<comment>.{28,30})  (?: *)Track: (?P<track>-?\d+)\n", re.MULTILINE)


def id3v2_fields(paths):
    """The fields of many files, in their order."""
    found = []
    for start in range(0, len(paths), AT_A_TIME):
        some = paths[start:start + AT_A_TIME]
        result = subprocess.run(["id3v2", "-l", *some], capture_output=True, check=True)
        listings = re.split(rb"^id3v1 tag info for .*:\n", result.stdout, flags=re.MULTILINE)[1:]
        require_equal("tags that id3v2 lists", len(some), len(listings))
        for path, listing in zip(some, listings):
            match = LISTING.match(listing)
            if match is None:
                raise Differs(f"id3v2 lists {path} in another way:\n{listing!r}")
            texts = {name: match[name].decode("latin-1").strip(" ")
                     for name in ("song", "artist", "album", "year", "comment")}
            # It takes the bytes of numbers for signed ones.
            found.append(texts | {name: int(match[name]) & 0xFF for name in ("track", "genre")})
    return found


def others_read_ours(tool, folder, chance):
    paths, wanted, lines, before = [], [], [], []
    for number in range(WRITTEN_HERE):
        path = folder / f"{number:04}.mp3"
        content, tag = sound(chance), b""
        if chance.random() < 0.5:
            tag = older_tag(chance)
        path.write_bytes(content + tag)
        fields = random_fields(chance)
        paths.append(path)
        before.append(content)
        lines.append(f"{path}\t{tool.record(fields)}")
        kept = cut(fields)
        # A record without genre leaves the one that the tag has.
        if fields["genre"] == NO_GENRE and tag:
            kept["genre"] = tag[-1]
        wanted.append(kept)
    require_equal("answers", {"written"}, set(tool.ask("write", lines)))

    by_id3v2 = id3v2_fields(paths)
    by_us = tool.ask("read", map_to_text(paths))
    for path, content, fields, listed, record in zip(paths, before, wanted, by_id3v2, by_us):
        data = path.read_bytes()
        require_equal(f"size of {path.name}", len(content) + 128, len(data))
        require_equal(f"sound of {path.name}", content, data[:-128])
        shown = {name: latin_1(value) if isinstance(value, str) else value
                 for name, value in fields.items()}
        stripped = {name: value.strip(" ") if isinstance(value, str) else value
                    for name, value in shown.items()}
        require_equal(f"mutagen on {path.name}", stripped, mutagen_fields(data))
        require_equal(f"id3v2 on {path.name}", stripped, listed)
        if fields["genre"] in tool.genres:
            require_equal(f"own reader on {path.name}", fields, tool.fields(record))


def we_read_mutagens(tool, folder, chance):
    paths, wanted = [], []
    for number in range(WRITTEN_BY_MUTAGEN):
        fields = latin_1_fields(chance)
        frames = {"TIT2": TIT2(0, [fields["song"]]), "TPE1": TPE1(0, [fields["artist"]]),
                  "TALB": TALB(0, [fields["album"]]), "TDRC": TDRC(0, [fields["year"]]),
                  "COMM": COMM(0, "eng", "", [fields["comment"]]),
                  "TRCK": TRCK(0, [str(fields["track"])])}
        if fields["genre"] != NO_GENRE:
            frames["TCON"] = TCON(0, [str(fields["genre"])])
        path = folder / f"mutagen-{number:04}.mp3"
        path.write_bytes(sound(chance) + MakeID3v1(frames))
        paths.append(path)
        wanted.append(cut(fields))
    for path, fields, record in zip(paths, wanted, tool.ask("read", map_to_text(paths))):
        require_equal(f"own reader on {path.name}", fields, tool.fields(record))


def we_read_id3v2s(tool, folder, chance):
    paths, wanted = [], []
    for number in range(WRITTEN_BY_ID3V2):
        fields = random_fields(chance)
        for name in ("song", "artist", "album", "comment"):
            # Its command line has meanings of its own for some characters.
            fields[name] = re.sub(r"[^A-Za-z0-9 ]", "", fields[name]).strip(" ")
        fields["genre"] = chance.randint(0, 147)
        fields["track"] = chance.randint(1, 255)
        fields["year"] = fields["year"] or "1999"
        path = folder / f"id3v2-{number:04}.mp3"
        path.write_bytes(sound(chance))
        subprocess.run(["id3v2", "-1", "-t", fields["song"], "-a", fields["artist"],
                        "-A", fields["album"], "-y", fields["year"], "-c", fields["comment"],
                        "-T", str(fields["track"]), "-g", str(fields["genre"]), path],
                       check=True, capture_output=True)
        paths.append(path)
        wanted.append(cut(fields))
    for path, fields, record in zip(paths, wanted, tool.ask("read", map_to_text(paths))):
        require_equal(f"own reader on {path.name}", fields, tool.fields(record))


def we_read_utf8(tool, folder, chance):
    """Tags as other programs write them that take UTF-8 for granted: cut amid a character, too."""
    letters = "初恋その一äöüßéЁлка🎵 abc"
    paths, wanted = [], []
    for number in range(WRITTEN_IN_UTF8):
        texts = ["".join(chance.choice(letters) for _ in range(chance.randint(0, 20)))
                 for _ in range(3)]
        fields = [text.encode("utf-8")[:30] for text in texts]
        path = folder / f"utf8-{number:04}.mp3"
        path.write_bytes(sound(chance) + b"TAG" + b"".join(field.ljust(30, b"\0") for field in fields)
                         + bytes(34) + bytes([NO_GENRE]))
        paths.append(path)
        wanted.append([field.decode("utf-8", "ignore") for field in fields])
    for path, texts, record in zip(paths, wanted, tool.ask("read", map_to_text(paths))):
        require_equal(f"own reader on {path.name}", texts, record.split("|")[1:4])


def main():
    chance = random.Random(4711)
    with tempfile.TemporaryDirectory(prefix="quillon-tags-") as name:
        folder = Path(name)
        tool = Tool(sys.argv[1])
        try:
            tool.learn_genre_names(folder)
            others_read_ours(tool, folder, chance)
            we_read_mutagens(tool, folder, chance)
            we_read_id3v2s(tool, folder, chance)
            we_read_utf8(tool, folder, chance)
        except Differs as difference:
            print(difference)
            return 1
    print(f"{WRITTEN_HERE} tags written here, {WRITTEN_BY_MUTAGEN} by mutagen and "
          f"{WRITTEN_BY_ID3V2} by id3v2: every reader says the same; {WRITTEN_IN_UTF8} tags in UTF-8 "
          "read as such")
    return 0


if __name__ == "__main__":
    sys.exit(main())
