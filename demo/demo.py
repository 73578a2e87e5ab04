#!/usr/bin/env python3
"""demo.py PROGRAM FOLDER   tells the story of a library and its database, and checks that it is
true. Exit status 0 only if all that it says has happened."""

import json
import os
import re
import shutil
import subprocess
import sys
import textwrap
from pathlib import Path

sys.dont_write_bytecode = True

import adding_story
import cover_story
import download_story
import modern_story
import picker_story
import playlist_story
import remote_story
import rows_before
import sample_library
import tag_story
import verification_story
import way_back_story
from telling import WIDTH, Untrue, chapter, count, heading, require, say

STORIES = (playlist_story, download_story, cover_story, adding_story, remote_story, picker_story,
           verification_story, tag_story, way_back_story, modern_story)

TABLES = ("Albums", "Tracks", "Playlists", "Spinner", "SpinnerArtist", "SpinnerGenre",
          "SpinnerID3Differences")
MADE_HERE = ".made-by-run-demo"


class Demo:
    def __init__(self, program, folder):
        self.program = Path(program).resolve()
        self.folder = Path(folder).resolve()
        self.music = self.folder / "Music"
        self.host = self.folder / "host"
        self.database = self.host / "jukebox.mdb"

    def shown(self, path):
        """A path as a person would type it."""
        relative = os.path.relpath(path)
        return relative if len(relative) < len(str(path)) else str(path)

    def elsewhere(self, name):
        """The same demo with another host folder."""
        other = Demo(self.program, self.folder)
        other.host = self.folder / name
        other.database = other.host / self.database.name
        return other

    def quillon(self, *arguments, status=0):
        result = subprocess.run([self.program, *arguments], stdout=subprocess.PIPE,
                                stdin=subprocess.DEVNULL, check=False)
        if result.returncode != status:
            sys.stdout.write(result.stdout.decode())
            raise Untrue(f"quillon {' '.join(map(str, arguments))} ended with status "
                         f"{result.returncode}")
        return result.stdout.decode()

    def rows(self, statement):
        lines = self.quillon("db", "query", self.database, statement, "--json").splitlines()
        return [json.loads(line) for line in lines]

    def show(self, statement):
        print(f"$ quillon db query {self.shown(self.database)} \\")
        print(textwrap.fill(f'"{statement}"', WIDTH, initial_indent="    ",
                            subsequent_indent="    ", break_on_hyphens=False))
        print(self.quillon("db", "query", self.database, statement), end="", flush=True)

    def all_rows(self):
        return {table: self.rows(f"SELECT * FROM [{table}]") for table in TABLES}

    def fresh_folder(self):
        if self.folder.exists():
            require((self.folder / MADE_HERE).exists() or not any(self.folder.iterdir()),
                    f"{self.folder} exists and was not made by this demo; it is left alone.\n"
                    "Please move it away first.")
            shutil.rmtree(self.folder)
        self.folder.mkdir(parents=True)
        (self.folder / MADE_HERE).write_text("The demo may remove this folder and all in it.\n")

    def setting(self, key):
        text = (self.host / "Quillon.ini").read_text("utf-8")
        return re.search(rf"^{key}=(.*)$", text, re.MULTILINE)[1].strip()

    def choose(self, key, value):
        """Gives a setting another value."""
        file = self.host / "Quillon.ini"
        text, found = re.subn(rf"^{key}=.*$", lambda _: f"{key}={value}",
                              file.read_text("utf-8"), flags=re.MULTILINE)
        require(found == 1, f"the settings have no {key}")
        file.write_text(text, "utf-8")

    def take_artists_of_folders(self):
        """Lets the artist of one tag be a difference, and not that of the song."""
        file = self.host / "host.ini"
        file.write_text(file.read_text("utf-8").replace("\nTrackArtists=1", "\nTrackArtists=0"),
                        "utf-8")

    def reconcile(self):
        """A run of which nothing is shown; what it printed."""
        return self.quillon("run", "--host", self.host, "--view", "plain")

    def run(self):
        print(f"$ quillon run --host {self.shown(self.host)} --view plain")
        print(self.reconcile(), end="", flush=True)

    def tell(self):
        self.fresh_folder()
        self.tell_of_files()
        self.tell_of_rows()
        before = self.all_rows()
        chapter("The first run")
        say("A line for each phase; the indented ones are the records of the log.")
        print()
        self.run()
        first = self.all_rows()
        self.tell_what_changed(before, first)
        self.tell_of_second_run(first)
        self.tell_of_third_run()
        for story in STORIES:
            story.tell(self)
        self.tell_how_to_go_on()

    def tell_of_files(self):
        artists, albums, self.songs = sample_library.make(self.music)
        self.albums = albums
        chapter("A music folder")
        say(f"{count(artists, 'artist')}, {count(albums, 'album')}, {count(self.songs, 'song')}: "
            f"MP3 files with ID3 tags in {self.shown(self.music)}, one folder an artist, one "
            "folder an album in it.")
        for artist, records in sample_library.COLLECTION.items():
            print(textwrap.shorten(f"  {artist}: ".lstrip() + "; ".join(records), WIDTH,
                                   placeholder=" ..."))

    def tell_of_rows(self):
        self.quillon("init", self.host, "--music", self.music)
        # This story is about rows that go at once.
        settings = self.host / "host.ini"
        settings.write_text(settings.read_text().replace("FollowMovedFiles=1", "FollowMovedFiles=0")
                            .replace("Numbers=tags", "Numbers=times")
                            .replace("TrackArtists=1", "TrackArtists=0")
                            .replace("KeepDays=14", "KeepDays=0")
                            .replace("Read=best", "Read=v1").replace("Write=both", "Write=v1"))
        for statement in rows_before.statements(self.setting("LibraryRoot")):
            self.quillon("db", "exec", self.database, statement)
        chapter("A jukebox database that knows a little of it")
        say(f"quillon init made the host folder {self.shown(self.host)}: settings, drive table and "
            "a new Access database. To give it a past, rows were put in: discs in the slots of "
            "players 1 and 2, and albums of player 1001, which stands for the library. Of these, "
            "one has a file with an old name, one holds a song that now lies elsewhere, one has "
            "lost its folder, and two share an identifier.")
        print()
        self.show("SELECT CDJID, Player, Tracks, Artist, Title FROM Albums ORDER BY ID")

    def tell_what_changed(self, before, after):
        chapter("The database after it")
        self.show("SELECT Player, Tracks, Left(Artist, 28) AS Performer, Left(Title, 30) AS Album "
                  "FROM Albums ORDER BY Artist, Title")
        old = {row["ID"]: row for row in before["Tracks"]}
        new = {row["ID"]: row for row in after["Tracks"]}
        albums = {row["CDJID"]: row["Title"] for row in before["Albums"] + after["Albums"]}
        old_albums = {row["ID"]: row for row in before["Albums"]}
        new_albums = {row["ID"]: row for row in after["Albums"]}
        removed = [old[key] for key in old.keys() - new.keys()]
        moved = [new[key] for key in old.keys() & new.keys()
                 if new[key]["CDJID"] != old[key]["CDJID"]]
        removed_albums = [old_albums[key] for key in sorted(old_albums.keys() - new_albums.keys())]
        players = [row for row in before["Albums"] if row["Player"] != rows_before.OWNED]

        print()
        say(f"Albums: {len(new_albums.keys() - old_albums.keys())} added, {len(removed_albums)} "
            f"removed. Tracks: {len(new.keys() - old.keys())} added, {len(moved)} moved, "
            f"{len(removed)} removed.")
        for row in removed_albums:
            again = any(other["Title"] == row["Title"] and other["Artist"] == row["Artist"]
                        and other["Player"] == row["Player"] for other in after["Albums"])
            print(f"  removed  {row['Artist']}: {row['Title']}"
                  + (f" ({row['CDJID']} was there twice; made anew)" if again else ""))
        for row in moved:
            print(f"  moved    {row['Title']}, now in \"{albums[row['CDJID']]}\","
                  f" still played {row['TimesPlayed']} times")
        for row in removed:
            if row["Title"] == "Allso Left":
                print(f"  renamed  {row['Artist']}: \"{row['Title']}\" went, \"Also Left\" came")
        say(f"Untouched: {count(len(players), 'disc')} of the players. What stayed has kept its "
            "count of plays.")

        require(len(after["Tracks"]) == self.songs + sum(row["Tracks"] for row in players),
                "not every file has exactly one row")
        require(len(after["Albums"]) == self.albums + len(players), "albums are missing")
        require(all(row in after["Albums"] for row in players), "a player's disc was changed")
        require([row["Title"] for row in moved] == ["Gibbous"], "the moved song was not found")
        require(all(new[key]["TimesPlayed"] == old[key]["TimesPlayed"]
                    for key in old.keys() & new.keys()), "a song lost its count of plays")
        require({row["Title"] for row in removed_albums}
                == {"Lost at the Ferry", "Pull", "Pull (copy)"}, "other albums were removed")

    def tell_of_second_run(self, before):
        chapter("The second run: numbers by file time")
        say("A new file keeps the number of its tag. From its second run on the library numbers "
            "an album by the times of its files, oldest first; two albums here were copied to "
            "the disk in another order than that of their songs.")
        self.reconcile()
        after = self.all_rows()
        old = {row["ID"]: row for row in before["Tracks"]}
        renumbered = [(old[row["ID"]], row) for row in after["Tracks"]
                      if row["Track"] != old[row["ID"]]["Track"]]
        print()
        print(f"  {'artist':<26}{'song':<22}{'number':>8}{'-> now':>8}")
        for was, now in sorted(renumbered, key=lambda pair: (pair[1]["CDJID"], pair[1]["Track"])):
            print(f"  {now['Artist']:<26}{now['Title']:<22}{was['Track']:>8}{now['Track']:>8}")
        require(len(renumbered) > 0, "the second run numbered nothing by file time")
        require(all(was["Title"] == now["Title"] for was, now in renumbered), "titles changed")

    def tell_of_third_run(self):
        chapter("The third run: nothing")
        before = self.all_rows()
        self.reconcile()
        after = self.all_rows()
        for table in TABLES:
            require(after[table] == before[table], f"the third run changed rows of {table}")
        total = sum(len(rows) for rows in after.values())
        say(f"All {total} rows of all {len(TABLES)} tables were compared before and after: not one "
            "has changed.")
        print(self.quillon("db", "check", self.database), end="")

    def tell_how_to_go_on(self):
        heading("Look further")
        database, host = self.shown(self.database), self.shown(self.host)
        say("Any Access reader opens the database; so does this program:")
        print(f"  {self.shown(self.program)} db query {database} \\\n"
              "      \"SELECT Track, Title, SoundFile FROM Tracks WHERE Artist='#9 Lantern'\"")
        print(f"  {self.shown(self.program)} check --host {host}")
        say(f"Log: {host}/host.log. Settings: {host}/Quillon.ini. Each run left dated backups "
            f"beside {database}. Rename or delete files in {self.shown(self.music)}, then:")
        print(f"  {self.shown(self.program)} run --host {host}")


def main():
    try:
        Demo(sys.argv[1], sys.argv[2]).tell()
    except Untrue as fault:
        print(f"\nrun-demo: {fault}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
