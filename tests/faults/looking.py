"""What a library is at a moment, told without the program: rows by mdb-export, lists by the songs they
name, sound files by what is to be heard."""

import hashlib
import os
import re
from collections import OrderedDict
from pathlib import Path

from library import TAG_SIZE, song_in, without_tag

import song_lists
import sound_files
import readers
from processes import call
from readers import exported

TABLES = ("Albums", "Tracks", "Spinner", "SpinnerArtist", "Playlists", "SpinnerID3Differences")
# What the household has told the database, and what only the jukebox software knows.
PRECIOUS = ("DateAdded", "DateReleased", "DateLastPlayed", "Rating1", "Rating2", "Rating3", "Rating4",
            "TimesPlayed", "TimePlayed", "Group", "NeverPlay", "Playcount", "Playlist", "Exclude",
            "Include")
# Between what a song's end says and what its beginning does.
HEAD = ", begins with "
DATES = ("-D", "%Y-%m-%d", "-T", "%Y-%m-%d %H:%M:%S")
# What runs have dated; the household's history ends before.
RUNS_BEGIN = 2021
MEMORY = 200


def digest(content):
    return hashlib.sha256(content).hexdigest()[:16]


class Remembered:
    """Results by the content of the database file that they were read from."""

    def __init__(self, ask):
        self.ask = ask
        self.known = OrderedDict()

    def __call__(self, database, *others):
        key = digest(database.read_bytes())
        if key not in self.known:
            self.known[key] = self.ask(database, *others)
        self.known.move_to_end(key)
        if len(self.known) > MEMORY:
            self.known.popitem(last=False)
        return self.known[key]


@Remembered
def tables_of(database):
    """All rows: table -> row key -> row. Rows without a key of their own are numbered."""
    tables = {}
    for table in TABLES:
        rows = exported(database, table, *DATES)
        tables[table] = {row.get("ID") or str(number): row for number, row in enumerate(rows)}
    return tables


@Remembered
def faults_of(database, program):
    """What the program and, where it is at hand, the structural checker say against a file."""
    status, output, errors = call([program, "db", "check", database])
    told = f"quillon db check: {output}{errors}" if status != 0 else ""
    return told + (readers.faults_of(database) if readers.checker_at_hand() else "")


def is_backup(path):
    return any("_Copy Dated_" in part for part in path.parts)


def is_unfinished(path):
    """Whether it has the name of what is still being written."""
    return any(part.startswith(".quillon-") for part in path.parts)


def files_of(library):
    """Every file but the database's own, the log, journals, reports, backups and unfinished files:
    name -> path."""
    found = {}
    for top in (library.host, library.disk):
        for folder, folders, names in os.walk(top, followlinks=True):
            here = Path(folder)
            inside = here.relative_to(library.folder)
            own = here in (library.host / "Changes", library.host / "Reports")
            if own or is_backup(inside) or is_unfinished(inside):
                folders.clear()
                continue
            for name in names:
                own = here == library.host and name.startswith(("jukebox.", "host.log"))
                if not own and not is_backup(Path(name)) and not is_unfinished(Path(name)):
                    found[neutral(f"{inside}/{name}")] = here / name
    return found


def neutral(name):
    """Without the time of a removal, and without the number that keeps two of a name apart there."""
    kept = re.sub(r"/Removed/[-_\d]{19}/", "/Removed/STAMP/", name)
    return re.sub(r" \(\d+\)(?=\.\w+$)", "", kept) if kept != name else name


def songs_at(library):
    """The song that each sound file holds, and "damaged" for what is no whole one."""
    return {name: song_in(path.read_bytes()) or "damaged" for name, path in files_of(library).items()
            if path.suffix.lower() == ".mp3" and path.exists()}


def shown_file(path):
    """What a file holds, in short."""
    if not path.exists():
        return "a link that leads nowhere"
    content = path.read_bytes()
    if path.suffix.lower() == ".mp3":
        head, _, tag = content.partition(without_tag(content))
        fields = tag.decode("cp1252").replace("\0", " ").split() if tag else ["no tag"]
        told = f"{song_in(content) or 'damaged'}, {' '.join(fields)}, of {int(path.stat().st_mtime)}"
        return told + (HEAD + digest(head) if head else "")
    if path.suffix == ".csv":
        content = b"\n".join(line.split(b",", 1)[-1] for line in content.split(b"\n"))
    return f"{len(content)} bytes {digest(content)}"


class Sight:
    """A library as it looks. `known` tells rows that were there before from those made since, whose
    keys may differ from run to run."""

    def __init__(self, library, known=None):
        self.library = library
        self.tables = tables_of(library.database)
        self.known = known or self.tables
        # An identifier that became free may be given to another album.
        self.known_albums = {row["CDJID"] for key, row in self.tables["Albums"].items()
                             if key in self.known["Albums"]}
        self.songs = songs_at(library)
        self.contents = {path.name: path.read_bytes() for path in library.lists.iterdir()
                         if path.is_file()} if library.lists.is_dir() else {}
        self.parts = {"track": self.tracks(), "album": self.albums(), "list": self.lists(),
                      "download": self.keyed("Spinner", ("Artist", "Album", "Song")),
                      "download artist": self.keyed("SpinnerArtist", ("Artist",)),
                      "playlist row": self.keyed("Playlists", ("Filename",)),
                      "difference": self.keyed("SpinnerID3Differences",
                                               ("Artist", "Album", "Track", "Field")),
                      "file": self.files()}

    def place(self, sound_file):
        return str(self.library.local(sound_file).relative_to(self.library.folder))

    def plain(self, table, row):
        """A row without what may differ between equal outcomes."""
        plain = dict(row)
        if row.get("ID") not in self.known[table]:
            plain["ID"] = "new"
        if "CDJID" in row and row["CDJID"] not in self.known_albums:
            plain["CDJID"] = "new"
        for field, value in row.items():
            if re.match(r"\d{4}-", value) and int(value[:4]) >= RUNS_BEGIN:
                plain[field] = "the time of a run"
        if "FileName" in row:
            plain["FileName"] = row["FileName"].replace(f"-{row['ID']}-", "-NUMBER-")
        return plain

    def gathered(self, table, key_of):
        """Rows by a key that people understand; a second row of the same key shows as such."""
        found = {}
        for row in self.tables[table].values():
            key, number = key_of(row), 1
            while (key if number == 1 else f"{key} ({number})") in found:
                number += 1
            found[key if number == 1 else f"{key} ({number})"] = self.plain(table, row)
        return found

    def keyed(self, table, fields):
        return self.gathered(table, lambda row: " | ".join(row[field] for field in fields))

    def tracks(self):
        def key(row):
            if not row["SoundFile"]:
                return f"{row['CDJID']} {row['Track']}"
            place = self.place(row["SoundFile"])
            return f"{self.songs.get(place, 'no song')} at {place}"
        return self.gathered("Tracks", key)

    def albums(self):
        return self.keyed("Albums", ("Artist", "Title", "Player"))

    def song_of(self, row):
        if not row["SoundFile"]:
            return f"{row['CDJID']} {row['Title']}"
        return self.songs.get(self.place(row["SoundFile"]), f"no file for {row['SoundFile']}")

    def lists(self):
        """The songs that each list names, in order."""
        song_at = {(row["CDJID"], int(row["Track"] or 0) - 1): self.song_of(row)
                   for row in self.tables["Tracks"].values()}
        albums = {row["CDJID"]: f"all of {row['Artist']} | {row['Title']}"
                  for row in self.tables["Albums"].values()}

        def named(entry):
            if len(entry) != 2 or not entry[1].lstrip("-").isdigit():
                return f"no entry: {' '.join(entry)}"
            if entry[1] == "-1":
                return albums.get(entry[0], f"no album {entry[0]}")
            return song_at.get((entry[0], int(entry[1])), f"nothing at {' '.join(entry)}")

        return {name: [named(entry) for entry in song_lists.entries(content)]
                for name, content in self.contents.items()}

    def files(self):
        lists = self.library.lists
        return {name: shown_file(path)
                for name, path in files_of(self.library).items() if path.parent != lists}

    def leftovers(self):
        """Files beside the database that a run which has come to its end leaves to nobody."""
        kept = {"jukebox.mdb", *(f"jukebox.mdb.{note}" for note in ("tags", "sounds", "missing"))}
        beside = {path.name for path in self.library.host.glob("jukebox.*")
                  if not is_backup(path)} - kept
        return beside | {str(path.relative_to(self.library.folder))
                         for path in self.library.folder.rglob(".quillon-*")}


def differences(expected, found, limit=4):
    """What two sights do not share, in words; "" when they are alike."""
    told = []
    for part, there in expected.parts.items():
        here = found.parts[part]
        for key in sorted(there.keys() | here.keys()):
            if key not in here:
                told.append(f"{part} {key} is missing")
            elif key not in there:
                told.append(f"{part} {key} is there, too: {shown(here[key])}")
            elif here[key] != there[key]:
                told.append(f"{part} {key}: {contrast(there[key], here[key])}")
    more = f"; and {len(told) - limit} more" if len(told) > limit else ""
    return "; ".join(told[:limit]) + more


def shown(value):
    return str(value) if len(str(value)) < 200 else str(value)[:197] + "..."


def contrast(expected, found):
    if isinstance(expected, dict):
        return ", ".join(f"{field} {expected.get(field)!r} -> {found.get(field)!r}"
                         for field in expected.keys() | found.keys()
                         if expected.get(field) != found.get(field))
    return f"{shown(expected)} -> {shown(found)}"
