"""Reconciles a copy of a prepared jukebox database with a folder tree made from its own rows.

usage: reconcile_real_database.py QUILLON NAME

Some files of the tree are left out and some are added, then `quillon run` is called three times.
What must hold afterwards is checked with an independent reader of the database.
"""
import collections
import os
import shutil
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "outside"))

import readers
from processes import call

OWNED = 1001


def fail(text):
    print("FAILED:", text)
    sys.exit(1)


class Database:
    """Reads a database with the structural checker's own dump."""

    def __init__(self, path):
        self.path = path
        self.tables = readers.dumped(path)

    def check(self):
        """Looks at the whole file, and reads all of its rows anew."""
        if faults := readers.faults_of(self.path):
            fail("structure: " + faults[:2000])
        self.tables = readers.dumped(self.path)

    def rows(self, table):
        """By identifier; whoever asks may keep them."""
        result = {}
        for row in self.tables.get(table, []):
            row = dict(row)
            row.pop("_table", None)
            where = row.pop("_row", None)
            result[row.get("ID", where)] = row
        return result


def local_path(root, sound_file):
    prefix = "D:\\Music\\"
    if not sound_file or not sound_file.startswith(prefix):
        return None
    return os.path.join(root, *sound_file[len(prefix):].split("\\"))


def make_tree(root, albums, tracks):
    """A file for each track of an owned album; every tenth is left out, every tenth album gains one."""
    owned = {row["CDJID"]: row for row in albums.values() if row["Player"] == OWNED}
    made, stamp = set(), 1_100_000_000
    for number, row in sorted(tracks.items()):
        path = local_path(root, row["SoundFile"])
        if path is None or row["CDJID"] not in owned or number % 10 == 0:
            continue
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if path not in made:
            with open(path, "wb") as out:
                out.write(b"\xff\xfb\x90\x00" * 8)
            stamp += 60
            os.utime(path, (stamp, stamp))
            made.add(path)
    for position, folder in enumerate(sorted({os.path.dirname(path) for path in made})):
        if position % 10 == 0:
            path = os.path.join(folder, os.path.basename(os.path.dirname(folder)) + " - Added Later.mp3")
            with open(path, "wb") as out:
                out.write(b"\xff\xfb\x90\x00" * 8)
            os.utime(path, (stamp + 3600, stamp + 3600))
            made.add(path)
    return made


def write_host(host, music, database):
    os.makedirs(host)
    with open(os.path.join(host, "Quillon.ini"), "w", encoding="ascii", newline="\r\n") as out:
        out.write("[NPFrame]\nLibraryRoot=D:\\Music\nReconcile=1\nID3Reconcile=0\n"
                  "Nirvis_CDJ_DB=E:\\" + os.path.basename(database) + "\n")
    with open(os.path.join(host, "host.ini"), "w", encoding="utf-8") as out:
        out.write("[Plugins]\nQuillon=1\n[Drives]\nD=" + os.path.dirname(music) + "\nE=" +
                  os.path.dirname(database) + "\n")


def compare_untouched(before, after, albums):
    """Rows of other players, and identifiers that no album row carries, stay as they were."""
    copies = collections.Counter(row["CDJID"] for row in albums.values())
    keep = {row["CDJID"] for row in albums.values()
            if row["Player"] != OWNED and copies[row["CDJID"]] == 1}
    for number, row in before.items():
        if row["CDJID"] in keep or row["CDJID"] not in copies:
            if after.get(number) != row:
                fail(f"a row that is not ours changed: {row} -> {after.get(number)}")


def check_result(root, made, before, database):
    albums, tracks = database.rows("Albums"), database.rows("Tracks")
    compare_untouched(before["Albums"], albums, before["Albums"])
    compare_untouched(before["Tracks"], tracks, before["Albums"])

    owned = {row["CDJID"]: row for row in albums.values() if row["Player"] == OWNED}
    if len(owned) != sum(1 for row in albums.values() if row["Player"] == OWNED):
        fail("two owned albums share an identifier")
    by_album, paths = collections.defaultdict(list), collections.Counter()
    for row in tracks.values():
        if row["CDJID"] in owned:
            by_album[row["CDJID"]].append(row["Track"])
            paths[local_path(root, row["SoundFile"]).lower()] += 1
    too_long = {path for path in made if len("D:\\Music\\" + os.path.relpath(path, root)) > 255}
    if set(paths) != {path.lower() for path in made - too_long}:
        fail("tracks and files differ: " +
             str(set(paths) ^ {path.lower() for path in made - too_long})[:2000])
    if max(paths.values()) != 1:
        fail("a file has two tracks")
    for cdjid, album in owned.items():
        folder_count = len(by_album[cdjid])
        if sorted(by_album[cdjid]) != list(range(1, folder_count + 1)):
            fail(f"numbers of {album['Artist']}\\{album['Title']}: {sorted(by_album[cdjid])}")
        if album["Tracks"] != folder_count and not too_long:
            fail(f"count of {album['Artist']}\\{album['Title']}: {album['Tracks']}")

    kept = ("Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed", "TimePlayed", "NeverPlay",
            "DateAdded", "DateReleased", "DateLastPlayed", "Minutes", "Seconds", "SoundFile", "Notes")
    survivors = 0
    for number, row in tracks.items():
        old = before["Tracks"].get(number)
        if old is None or row["CDJID"] not in owned or old["CDJID"] != row["CDJID"]:
            continue
        survivors += 1
        for field in kept:
            if row[field] != old[field]:
                fail(f"track {number}: {field} was {old[field]!r} and is {row[field]!r}")
    if survivors == 0:
        fail("no track row survived")
    for table in ("Playlists", "SpinnerGenre"):
        if database.rows(table) != before[table]:
            fail(f"{table} changed")
    return albums, tracks, *check_downloads(albums, tracks, before, database)


def check_downloads(albums, tracks, before, database):
    """Every song that can be told from others is in the download table, what was there stays."""
    spinner, artists = database.rows("Spinner"), database.rows("SpinnerArtist")
    for table, rows in (("Spinner", spinner), ("SpinnerArtist", artists)):
        for number, row in before[table].items():
            now = rows.get(number)
            # A genre that was missing is filled in.
            if now and "Genre" in row and row["Genre"] is None and now["Genre"]:
                now = now | {"Genre": None}
            if now != row:
                fail(f"a row of {table} changed: {row} -> {rows.get(number)}")
    named = collections.defaultdict(list)
    for row in albums.values():
        named[row["CDJID"]].append(row)
    songs = {(album["Artist"], album["Title"], row["Title"])
             for row in tracks.values() for album in named[row["CDJID"]]}
    songs = {song for song in songs if all(name is not None and '"' not in name for name in song)}
    there = {tuple((row[field] or "").lower() for field in ("Artist", "Album", "Song"))
             for row in spinner.values()}
    missing = {song for song in songs if tuple(name.lower() for name in song) not in there}
    if missing:
        fail(f"{len(missing)} of {len(songs)} songs are not in the download table: "
             + str(sorted(missing)[:5]))
    for number, row in spinner.items():
        if number not in before["Spinner"] and f"/spinlinks/000-{number}-000.rm" not in row["FileName"]:
            fail(f"a download without its link: {row}")
    return spinner, artists


def run(quillon, host, expected):
    status, output, errors = call([quillon, "run", "--host", host, "--view", "plain"])
    if status not in expected:
        fail(f"exit status {status}:\n{output[-3000:]}\n{errors[-3000:]}")


def main():
    quillon, name = sys.argv[1:]
    with tempfile.TemporaryDirectory() as work:
        music, data = os.path.join(work, "d", "Music"), os.path.join(work, "e")
        os.makedirs(music)
        os.makedirs(data)
        path = os.path.join(data, "cdj.mdb")
        shutil.copyfile(readers.SHARED / "fixtures" / "library" / f"{name}.mdb", path)
        os.chmod(path, 0o644)
        database = Database(path)
        before = {table: database.rows(table)
                  for table in ("Albums", "Tracks", "Playlists", "SpinnerGenre", "Spinner",
                                "SpinnerArtist")}
        made = make_tree(music, before["Albums"], before["Tracks"])
        host = os.path.join(work, "host")
        write_host(host, music, path)

        results = []
        for _ in range(3):
            # Paths longer than a field are errors that the log names; all else must be clean.
            run(quillon, host, (0, 1))
            database.check()
            results.append(check_result(music, made, before, database))
        if results[1] != results[2]:
            fail("the third run changed something")
        left_over = [entry for entry in os.listdir(data)
                     if entry != "cdj.mdb" and "_Copy Dated_" not in entry]
        if left_over:
            fail(f"left beside the database: {left_over}")
    print(f"{name}: {len(made)} files, {len(results[2][0])} albums, {len(results[2][1])} tracks, "
          f"{len(results[2][2])} downloads")


main()
