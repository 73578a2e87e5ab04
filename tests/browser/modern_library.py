"""Libraries of any size for the modern picker, their rows put into the database straight away."""

import csv
import io
import json
import random
import re
import subprocess

from library import HOSTILE, picture

FIELDS = {"Albums": ["CDJID", "Title", "Artist", "Player", "DateAdded", "Tracks", "Minutes", "Seconds", "ImageFile"],
          "Tracks": ["CDJID", "Track", "Title", "Minutes", "Seconds"],
          "Spinner": ["Artist", "Album", "Song", "Genre"]}
FIRST = ["Amber", "Birch", "Cedar", "Dusk", "Ember", "Fjord", "Granite", "Harbour", "Iris", "Juniper", "Kestrel",
         "Lantern", "Meadow", "Nocturne", "Orchard", "Pepper", "Quarry", "River", "Saffron", "Thistle", "Umber",
         "Velvet", "Willow", "Xylem", "Yarrow", "Zephyr"]
SECOND = ["Street", "Fields", "Quartet", "Machine", "Parade", "Sisters", "Union", "Weather", "Society", "Radio",
          "Hotel", "Letters", "Garden"]
SONG = ["First Light", "Slow Train", "Paper Moon", "Low Tide", "Northern Line", "Glass House", "After Rain", "Homeward",
        "Second Wind", "Open Window", "Salt and Smoke", "Wide Awake"]
GENRES = ["Rock", "Jazz", "Folk", "Ambient", "Classical", "Hip-Hop", "Soul", "Electronic"]
AWKWARD = [("مشروع ليلى", "ابن الليل"), ("אביב גפן", "אור הירח"), ("東京事変", "教育"), ("Ásgeir", "Dýrð í dauðaþögn"),
           ("Beyoncé & Motörhead", "L'été – à la plage"), ("2 Many Names", "99 Problems: the <b>best</b> of"),
           ("A" * 120, "Nobreak" * 30), ("The Orchestra of the Society of Ancient and Modern Instruments of the North",
                                         "Complete Concertos for Two Violins, Strings and Basso Continuo, Volume 7")]
COVERS = 24
TRACKS = 10


class Album:
    def __init__(self, number, artist, title):
        self.artist, self.title = artist, title
        self.cdjid = f"252E6710{number:08d}"
        self.tracks = [f"{SONG[(number + track) % len(SONG)]} {number + 1}.{track + 1}" for track in range(TRACKS)]
        self.genre = GENRES[number * 7 % len(GENRES)] if number % 11 else ""
        self.timed = number % 3 != 1
        self.added = f"20{10 + number % 16:02d}-{1 + number % 12:02d}-{1 + number % 28:02d}T12:00:00"
        self.cover = f"cover {number % COVERS}.png" if number % 4 else ""


def albums_for(count):
    """So many: the awkward ones and the hostile ones first, as far as they fit, then usual ones."""
    names = AWKWARD + [(artist, title) for artist, title in zip(HOSTILE, HOSTILE[1:] + HOSTILE[:1])]
    if count < len(names):
        names = names[:8] + names[8::2] if count > 1 else [("Amber Street", "Low Tide")]
    names = names[:count]
    chance = random.Random(17)
    while len(names) < count:
        artist = f"{chance.choice(FIRST)} {chance.choice(SECOND)}"
        for volume in range(min(count - len(names), chance.randint(1, 6))):
            names.append((artist, f"{chance.choice(SONG)} {len(names)}"))
    return [Album(number, artist, title) for number, (artist, title) in enumerate(names)]


class ModernLibrary:
    def __init__(self, program, folder, albums):
        self.program, self.folder, self.host, self.albums = program, folder, folder / "shelf", albums
        (folder / "Music").mkdir(parents=True)
        self.call("init", self.host, "--music", folder / "Music")
        rows = {"Albums": [], "Tracks": [], "Spinner": []}
        for number, album in enumerate(albums):
            image = f"H:\\Covers\\{album.cover}" if album.cover else ""
            rows["Albums"].append([album.cdjid, album.title, album.artist, 1001, album.added, TRACKS, -1, -1, image])
            for track, title in enumerate(album.tracks, 1):
                minutes, seconds = (track, (number + 7 * track) % 60) if album.timed else (-1, -1)
                rows["Tracks"].append([album.cdjid, track, title, minutes, seconds])
            if album.genre:
                rows["Spinner"].append([album.artist, album.title, album.tracks[0], album.genre])
        for table, lines in rows.items():
            self.insert(table, lines)
        for number in range(COVERS):
            (self.host / "Covers" / f"cover {number}.png").write_bytes(picture(number))

    def insert(self, table, lines):
        text = io.StringIO()
        writer = csv.writer(text, quoting=csv.QUOTE_ALL, lineterminator="\r\n")
        writer.writerow(FIELDS[table])
        writer.writerows(lines)
        self.call("db", "import", self.host / "jukebox.mdb", table, "-", text=text.getvalue())

    def call(self, *arguments, text=""):
        done = subprocess.run([str(self.program), *map(str, arguments)], check=False, input=text.encode(),
                              capture_output=True)
        if done.returncode != 0:
            raise RuntimeError(f"quillon {arguments[0]}: {(done.stdout + done.stderr).decode()}")
        return done.stdout.decode()

    def build(self, **wanted):
        """Makes the pages, with these settings."""
        file = self.host / "Quillon.ini"
        text = file.read_text("cp1252")
        wanted = {"Reconcile": 0, "AlbumPicker": 1, "PickerMinimum": 2, **wanted}
        for key, value in wanted.items():
            text = re.sub(rf"(?m)^{key}=.*\n?", "", text)
            text = text.replace("[NPFrame]\n", f"[NPFrame]\n{key}={value}\n", 1)
        file.write_text(text, "cp1252")
        return self.call("run", "--host", self.host, "--view", "plain")

    def in_order(self):
        """As the database orders them."""
        lines = self.call("db", "query", self.host / "jukebox.mdb", "--json",
                          "SELECT CDJID FROM Albums ORDER BY Artist, Title").splitlines()
        by_id = {album.cdjid: album for album in self.albums}
        return [by_id[json.loads(line)["CDJID"]] for line in lines]
