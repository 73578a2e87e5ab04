#!/usr/bin/env python3
"""flat_files.py PROGRAM   takes a library in the flat layout, with files that other programs have made and
tagged, through the modes that tags matter to, with the keys for music of today: albums are those that
mutagen reads, names and bytes stay, and once more nothing changes."""

import sys
from collections import Counter

from real_files import Runs, differing, expected, require, state
from processes import Failed
from stage import Stage
import many_files
import sound_files

ARTIST = "Alder"
LONG_ALBUM = "An album whose title has more than thirty letters"


def make(stage):
    """D:\\Music with each kind of tag, and an album of a long title; what waits to be added."""
    kinds = stage.disk / "kinds"
    kinds.mkdir()
    made = {f"{ARTIST}_{path.stem}.mp3": path for path in sound_files.make(kinds)}
    shelf = many_files.Shelf([kinds / f"{sound}.plain.mp3" for sound in sound_files.SOUNDS])
    for track in (1, 2, 3):
        path = kinds / f"long {track}.mp3"
        shelf.add(path, many_files.tagged(3, 1, old=2, artist=ARTIST, album=LONG_ALBUM,
                                          title=f"Ring {track}", track=4 - track, genre="Jazz"))
        made[f"{ARTIST}_Ring {track}.mp3"] = path
    for name, path in made.items():
        (stage.disk / "Music" / name).write_bytes(path.read_bytes())
    shelf.add(stage.disk / "New" / "x.mp3",
              many_files.tagged(4, 3, artist="Birch", album=LONG_ALBUM, title="New", track=1))
    return made


def is_tagged(path):
    return any(expected(path).values())


def confirm_rows(stage, made):
    """Each file is a track of the album that its tag names, with its length."""
    albums = {row["CDJID"]: row for row in stage.query("SELECT * FROM Albums")}
    tracks = stage.query(f"SELECT * FROM Tracks WHERE Artist='{ARTIST}'")
    require(len(tracks) == len(made), f"{len(tracks)} rows for {len(made)} files")
    for row in tracks:
        name = row["SoundFile"].rsplit("\\", 1)[1]
        album = expected(made[name])["album"] if is_tagged(made[name]) else "Unknown"
        row_of_album = albums[row["CDJID"]]
        require((row_of_album["Artist"], row_of_album["Title"]) == (ARTIST, album),
                f"{name}: in {row_of_album['Title']!r} where {album!r} belongs")
        require(row["Title"] == name.rsplit("_", 1)[1][:-len(".mp3")], f"{name}: {row['Title']!r}")
        length = row["Minutes"] * 60 + row["Seconds"]
        require(abs(length - sound_files.SECONDS) <= 1, f"{name}: {length} s")
    sizes = Counter(row["CDJID"] for row in tracks)
    for album, size in sizes.items():
        require(albums[album]["Tracks"] == size, f"{albums[album]}: {size} tracks")
        numbers = sorted(row["Track"] for row in tracks if row["CDJID"] == album)
        require(numbers == list(range(1, size + 1)), f"{albums[album]['Title']}: {numbers}")
    rings = {row["Title"]: row["Track"] for row in tracks if row["Title"].startswith("Ring")}
    require(rings == {"Ring 1": 3, "Ring 2": 2, "Ring 3": 1}, f"numbers by tags: {rings}")


def music(stage):
    return state(stage.disk / "Music")


def confirm_added(stage, before, log):
    """AddFiles makes folders in this layout, too. The walk does not look into them, so what was added
    waits like missing music."""
    name = f"Birch/{LONG_ALBUM}/New.mp3"
    require(differing(before, music(stage)) == [name], f"added: {differing(before, music(stage))}")
    told = f"Album is missing, it is kept for 14 days: Birch\\{LONG_ALBUM}, 1 track"
    require(log == [told], f"told: {log}")
    albums = stage.query("SELECT CDJID, Tracks FROM Albums WHERE Artist='Birch'")
    tracks = stage.query("SELECT CDJID, Track FROM Tracks WHERE Title='New'")
    require([row["Tracks"] for row in albums] == [0], f"album added: {albums}")
    require([(row["CDJID"], row["Track"]) for row in tracks] == [(albums[0]["CDJID"], 0)],
            f"track added: {tracks}")


def main():
    with Stage(sys.argv[1]) as stage:
        runs = Runs(stage)
        stage.settings["FlatStructure"] = "1"
        made = make(stage)
        before = music(stage)
        numbers = [line for line in runs.run("Reconcile")
                   if not line.startswith("Track numbers of the files of Alder")]
        require(not numbers, f"told: {numbers}")
        confirm_rows(stage, made)
        runs.confirm_unchanged("Reconcile")
        for mode in ("ID3Update", "ID3Write"):
            runs.run(mode)
            runs.confirm_unchanged(mode)
        require(not differing(before, music(stage)), "files have changed")
        runs.run("AddFiles")
        runs.confirm_unchanged("AddFiles")
        confirm_added(stage, before, runs.run("Reconcile"))
        confirm_rows(stage, made)
        runs.confirm_unchanged("Reconcile")
        stage.confirm_database()


if __name__ == "__main__":
    try:
        main()
    except Failed as failure:
        sys.exit(f"FAILED: {failure}")
