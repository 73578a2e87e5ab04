"""The part of the story that is about playlists: lists made by hand that follow their songs, lists
that the program makes, and lists for other players."""

import os

import sample_library
import sound_files
from telling import chapter, count, require, say

HEADER = "CDJ Playlist V1.1"
RADIO, DIAL = "Grandmother's Radio", "Dial"
ROAD, OLD, FERRY = "OnTheRoad.pla", "OldFavourites.pla", "OnlyFerry.pla"
FERRY_ALBUM = "252E671073EC0003"  # its folder is gone, see rows_before
NEW_SONG = "Between Stations"


class Playlists:
    """The playlist folders of the demo's host folder, read without the program."""

    def __init__(self, demo):
        self.demo = demo
        self.folder = demo.host / "Playlists"
        self.converted = demo.host / "M3u"

    def tracks(self):
        return self.demo.rows("SELECT CDJID, Track, Artist, Title FROM Tracks")

    def place(self, artist, title):
        """The line that names a song."""
        row = next(row for row in self.tracks()
                   if (row["Artist"], row["Title"]) == (artist, title))
        return f"{row['CDJID']} {row['Track'] - 1}"

    def album(self, artist, title):
        row = next(row for row in self.demo.rows("SELECT CDJID, Artist, Title FROM Albums")
                   if (row["Artist"], row["Title"]) == (artist, title))
        return row["CDJID"]

    def write(self, name, lines):
        (self.folder / name).write_bytes("".join(f"{line}\r\n" for line in [HEADER, *lines])
                                         .encode("cp1252"))

    def lines(self, name):
        return (self.folder / name).read_bytes().decode("cp1252").split("\r\n")[1:-1]

    def named(self, name):
        """Each line of a list with the song that it names at present."""
        title_at = {f"{row['CDJID']} {row['Track'] - 1}": row["Title"] for row in self.tracks()
                    if row["Track"] is not None}
        title_at |= {f"{row['CDJID']} -1": f"all of \"{row['Title']}\""
                     for row in self.demo.rows("SELECT CDJID, Title FROM Albums")}
        return [(line, title_at.get(line)) for line in self.lines(name)]

    def songs(self, name):
        return [song for _, song in self.named(name)]

    def all_bytes(self):
        return {file.name: file.read_bytes() for file in sorted(self.folder.iterdir())}


def tell(demo):
    lists = Playlists(demo)
    tell_of_lists_made_by_hand(demo, lists)
    tell_of_repairs(demo, lists)
    tell_of_generated_lists(demo, lists)
    tell_of_other_players(demo, lists)


def show(lists, name):
    print(f"  {name}")
    for line, song in lists.named(name):
        print(f"    {line:<20}  {song or '(nothing)'}")


def tell_of_lists_made_by_hand(demo, lists):
    chapter("Playlists made by hand")
    say("The jukebox's lists name songs by album and position, counted from 0; -1 is the whole "
        "album. Two of these three also name songs of an album that has lost its folder.")
    print()
    ballast = lists.album("Velvet Tugboat 7", "Ballast")
    lists.write(ROAD, [lists.place(RADIO, "Off"), lists.place(RADIO, "88"), f"{ballast} -1",
                       lists.place("Marble Foxes", "Plinth")])
    lists.write(OLD, [f"{FERRY_ALBUM} 0", lists.place(RADIO, "104.1"), f"{FERRY_ALBUM} 1"])
    lists.write(FERRY, [f"{FERRY_ALBUM} -1"])
    for name in (ROAD, OLD, FERRY):
        show(lists, name)


def add_an_old_song(demo):
    """A file older than its album, so that it comes first and moves all others."""
    path = os.path.join(demo.music, RADIO, DIAL, sample_library.song_file(0, NEW_SONG))
    sound_files.write(path, sound_files.silence(1) + sound_files.tag(NEW_SONG, RADIO, DIAL),
                      sample_library.FIRST_TIME)


def give_artists_a_genre(demo):
    """The download table says what an artist plays; it may know already."""
    known = demo.rows("SELECT Artist FROM Spinner WHERE Genre Is Not Null")
    if known:
        return
    for artist, song, genre in ((RADIO, "88", "Spoken & Sung"),
                                ("Marble Foxes", "Plinth", "Rock/Stone"),
                                ("Velvet Tugboat 7", "Tow", "Rock/Stone")):
        quoted = '"' + artist + '"'
        demo.quillon("db", "exec", demo.database,
                     "INSERT INTO Spinner (Artist, Song, Genre, Exclude)"
                     f" VALUES ({quoted}, \"{song}\", \"{genre}\", 0)")


def tell_of_repairs(demo, lists):
    road, old = lists.songs(ROAD), lists.songs(OLD)
    before = {name: lists.lines(name) for name in (ROAD, OLD, FERRY)}
    add_an_old_song(demo)
    give_artists_a_genre(demo)
    chapter("The album gets a song in front")
    say(f"\"{NEW_SONG}\" was put into \"{DIAL}\". Its file is older than the others, so all their "
        "numbers move. What the log says of playlists:")
    print()
    output = demo.reconcile()
    output += demo.reconcile()
    for line in output.splitlines():
        if line.startswith("   Quillon: Playlist "):
            print("  " + line.strip().removeprefix("Quillon: "))
    print("\nThe lines that changed:\n")
    for name in (ROAD, OLD):
        after = lists.lines(name)
        print(f"  {name}")
        for line in before[name]:
            if line not in after:
                print(f"  - {line}")
        for line, song in lists.named(name):
            if line not in before[name]:
                print(f"  + {line:<20}  {song}")
    require(lists.lines(ROAD) != before[ROAD], "no position has moved")
    require(lists.songs(ROAD) == road, "a list names other songs than before")
    require(lists.songs(OLD) == [song for song in old if song], "dead entries were not removed")
    require(not (lists.folder / FERRY).exists(), "a list without entries is still there")
    print()
    say(f"Each list names the songs it named before. {FERRY} had nothing left and is gone; like "
        "every list it is in the dated copy of the folder.")


def tell_of_generated_lists(demo, lists):
    chapter("Playlists made by the program")
    say("For each genre of the download table and for each of its artists the same runs have made "
        "a list, and recorded it in the table Playlists.")
    print()
    demo.show("SELECT Filename, AutoGenre, AutoArtist FROM Playlists ORDER BY ID")
    rows = demo.rows("SELECT Filename, AutoGenre, AutoArtist FROM Playlists")
    require(any(row["AutoGenre"] for row in rows) and any(row["AutoArtist"] for row in rows),
            "a family of playlists was not made")
    print()
    name = "GrandmothersRadio.pla"
    show(lists, name)
    require(lists.songs(name)[0] and None not in lists.songs(name), "an entry names nothing")
    before = lists.all_bytes()
    demo.reconcile()
    require(lists.all_bytes() == before, "a further run has changed a list")
    print()
    say(f"A further run was made: not a byte of the {count(len(before), 'list')} is another.")


def tell_of_other_players(demo, lists):
    chapter("The same lists for other players")
    say("With PlaToM3u=1 a run converts them; the database stays as it is.")
    print()
    demo.choose("PlaToM3u", 1)
    demo.run()
    demo.choose("PlaToM3u", 0)
    converted = lists.converted / ROAD.replace(".pla", ".m3u")
    content = converted.read_bytes().decode("cp1252")
    print(f"\n$ cat {demo.shown(converted)}")
    print(content.replace("\r\n", "\n"), end="")
    require(content.startswith("#EXTM3U\r\n"), "the converted list has no header")
    named = [line for line in content.split("\r\n") if line.startswith("#EXTINF:")]
    require(len(named) == len(lists.lines(ROAD)) - 1
            + len(sample_library.COLLECTION["Velvet Tugboat 7"]["Ballast"]),
            "the converted list has other songs")
