"""A library for the picker: files, rows, covers, settings."""

import json
import re
import struct
import subprocess
import zlib
from dataclasses import dataclass, field
from pathlib import Path


@dataclass
class Album:
    artist: str
    title: str
    tracks: list
    cover: str = ""  # file name, "" for none
    cdjid: str = field(default="", init=False)


def plain_albums():
    """Thirteen albums, their covers named in ways that web addresses have a meaning for."""
    covers = ["Plain - One.png", "Hash # - Two.png", "Per%20cent - Three.png", "A&B - Four.png",
              "Quote's - Five.png", "Plus + - Six.png", "Ñandú - Seven.png", "Côté - Eight.png",
              "Semi;colon=x - Nine.png", "Same [1].png", "Same 1.png", "東京 - Twelve.png", ""]
    artists = ["Alder", "Birch & Sons", "Cedar", "Döblin", "Elm", "Fir", "Gorse", "Hazel", "Ivy",
               "Juniper", "Kauri", "Larch", "Maple"]
    return [Album(artist, f"Light {number}", [f"Song {track}" for track in range(1, 6)],
                  cover)
            for number, (artist, cover) in enumerate(zip(artists, covers), 1)]


HOSTILE = ["<script>alert(1)</script>", "\"><img src=x onerror=alert(1)>", "'><svg onload=alert(1)>",
           "<% Response.Redirect(\"/x\") %>", "%><% Kill \"x\" %>", "&amp; &lt;b&gt; &#60;i&#62;",
           "</td></table></body></html>", "javascript:alert(1)", "\"' onmouseover=\"alert(1)\" '",
           "<!--#include virtual=\"/Quillon.ini\"-->", "--><!-- x", "</title></bdi></a>",
           "`${alert(1)}` {{1}} \\\" \u202eevil\u2066"]


def hostile_albums():
    """Albums whose every text tries to be more than a text."""
    turned = HOSTILE[1:] + HOSTILE[:1]
    return [Album(f"{number:02} {artist}", title, [title, artist, *HOSTILE[:3]],
                  f"{number} {artist} - x.png".translate(str.maketrans("", "", "<>:\"/\\|?*")))
            for number, (artist, title) in enumerate(zip(HOSTILE, turned), 1)]


def picture(number):
    """A PNG image, 120 x 120, of a colour that depends on the number."""
    colour = bytes((40 + number * 53 % 180, 40 + number * 97 % 180, 40 + number * 151 % 180))
    rows = (b"\0" + colour * 120) * 120

    def chunk(kind, content):
        check = zlib.crc32(kind + content)
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", check)

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 120, 120, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Library:
    """A host folder with albums. Rows come from a reconciliation, since it makes many at a time; the
    texts that files cannot be called are put into them afterwards."""

    def __init__(self, program, folder, albums):
        self.program, self.host = program, folder / "shelf"
        self.albums = albums
        for number, album in enumerate(albums):
            place = folder / "Music" / f"{number:03}" / "Album"
            place.mkdir(parents=True)
            for track in range(1, len(album.tracks) + 1):
                (place / f"{track:02} - {track}.mp3").write_bytes(bytes(300))
        self.call("init", self.host, "--music", folder / "Music")
        self.call("run", "--host", self.host, "--view", "plain")
        self.style("classic")
        self._put_texts()
        self._draw_covers()

    def style(self, name):
        """The pages that the next run makes."""
        file = self.host / "host.ini"
        file.write_text(re.sub(r"(?m)^Style=.*$", f"Style={name}", file.read_text()))

    def call(self, *arguments):
        done = subprocess.run([str(self.program), *map(str, arguments)], check=False,
                              stdin=subprocess.DEVNULL, capture_output=True)
        if done.returncode != 0:
            raise RuntimeError(f"quillon {arguments[0]}: {(done.stdout + done.stderr).decode()}")
        return done.stdout.decode()

    def _execute(self, statement):
        self.call("db", "exec", self.host / "jukebox.mdb", statement)

    def _put_texts(self):
        identifiers = self.call("db", "query", self.host / "jukebox.mdb", "--json",
                                "SELECT Artist, CDJID FROM Albums ORDER BY Artist").splitlines()
        if len(identifiers) != len(self.albums):
            raise RuntimeError(f"{len(identifiers)} albums in the database")
        for number, (album, line) in enumerate(zip(self.albums, identifiers)):
            album.cdjid = json.loads(line)["CDJID"]
            image = f"H:\\Covers\\{album.cover}" if album.cover else ""
            self._execute(f"UPDATE Albums SET Artist={quoted(album.artist)}, "
                          f"Title={quoted(album.title)}, ImageFile={quoted(image)} "
                          f"WHERE CDJID={quoted(album.cdjid)}")
        places = {}
        for album in self.albums:
            for track, title in enumerate(album.tracks, 1):
                place = f"CDJID={quoted(album.cdjid)} AND Track={track}"
                places.setdefault(title, []).append(place)
        for title, conditions in places.items():
            self._execute(f"UPDATE Tracks SET Title={quoted(title)} WHERE {' OR '.join(conditions)}")

    def _draw_covers(self):
        for number, album in enumerate(self.albums):
            if album.cover:
                (self.host / "Covers" / album.cover).write_bytes(picture(number))

    def build_picker(self, forms):
        """Makes the pages anew: pages of 3 x 2 albums with links or forms."""
        file = self.host / "Quillon.ini"
        settings = file.read_text("cp1252")
        wanted = {"Reconcile": 0, "AlbumPicker": 1, "PickerMinimum": 2, "ImagesWide": 3,
                  "ImagesHigh": 2, "PickerFormatOption": int(forms)}
        lines = [line for line in settings.splitlines()
                 if line.partition("=")[0] not in wanted and line != "[NPFrame]"]
        lines = ["[NPFrame]", *(f"{key}={value}" for key, value in wanted.items()), *lines]
        file.write_text("\n".join(lines) + "\n", "cp1252")
        self.call("run", "--host", self.host, "--view", "plain")


def quoted(text):
    return '"' + text.replace('"', '""') + '"'
