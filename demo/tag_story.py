"""A chapter of the demo: differences between tags and database, worked off in either direction."""

import re

import sound_files
from telling import chapter, require, say

ARTIST, ALBUM = "Fennel Road", "Slow Ferry"
DIFFERENCES = (
    ("Artist", "Fenel Road", ARTIST, "Harbour Light"),
    ("Genre", "Pop", "Folk", "Harbour Light"),
    ("Comment", "Length=214", "Length=185", "Harbour Light"),
    ("Album", "Slow Fairy", ALBUM, "Second Landing"),
    ("Track Number Missing", "", "", "Second Landing"),
)
COLUMNS = {"Song": (3, 33), "Artist": (33, 63), "Album": (63, 93), "Year": (93, 97),
           "Comment": (97, 125), "Track": (126, 127), "Genre": (127, 128)}
GENRES = {13: "Pop", 80: "Folk", 255: "none"}


def tag_of(path):
    """The fields of a file's tag, and all bytes before it."""
    content = path.read_bytes()
    end = content[-128:]
    fields = {name: end[start:stop] for name, (start, stop) in COLUMNS.items()}
    shown = {name: field.replace(b"\0", b"").decode("cp1252") for name, field in fields.items()}
    shown["Track"] = str(fields["Track"][0] or "none")
    shown["Genre"] = GENRES[fields["Genre"][0]]
    return shown, content[:-128]


class TagStory:
    """Another library with a host folder of its own."""

    def __init__(self, demo):
        self.place = demo.elsewhere("tag-host")
        self.music = demo.folder / "Tagged Music"
        self.files = {title: self.music / ARTIST / ALBUM / f"{ARTIST} - {title}.mp3"
                      for title in ("Harbour Light", "Second Landing")}

    def tell(self):
        self.make()
        chapter("Tags and database: two ways to agree")
        say("Two songs whose tags say other things than their folders and the database. The "
                 "differences are rows of a table, as a comparison of tags leaves them; they may "
                 "be worked off in either direction.")
        print()
        self.place.show("SELECT Field, ID3Value, DBValue, Track FROM SpinnerID3Differences")
        self.write_tags()
        self.update_database()

    def make(self):
        times = {"Harbour Light": 1500000000, "Second Landing": 1500086400}
        tags = {"Harbour Light": sound_files.tag(
                    song="Harbour Light", artist="Fenel Road", album=ALBUM, year="1998",
                    comment="live Length='214'", track=1, genre=13),
                "Second Landing": sound_files.tag(
                    song="Second Landing", artist=ARTIST, album="Slow Fairy", genre=80)}
        for title, path in self.files.items():
            sound_files.write(path, sound_files.silence(0.5) + tags[title], times[title])
        self.place.quillon("init", self.place.host, "--music", self.music)
        self.place.take_artists_of_folders()
        self.place.choose("ID3Reconcile", 0)
        self.place.reconcile()
        self.execute("UPDATE Tracks SET Minutes = 3, Seconds = 5 WHERE Title = 'Harbour Light'")
        for title in self.files:
            self.execute("DELETE * FROM Spinner WHERE Song = '" + title + "'")
            self.execute("INSERT INTO Spinner (Artist, Album, Song, Genre, Length) VALUES "
                         f"('{ARTIST}', '{ALBUM}', '{title}', 'Folk', 0)")
        self.execute("DELETE * FROM SpinnerID3Differences")
        for field, tag, database, title in DIFFERENCES:
            self.execute("INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, "
                         f"Album, Track) VALUES ('{field}', '{tag}', '{database}', '{ARTIST}', "
                         f"'{ALBUM}', '{title}')")

    def write_tags(self):
        chapter("ID3Write=1: the tags follow the database")
        before = {title: (tag_of(path), path.stat()) for title, path in self.files.items()}
        self.run("ID3Write")
        for title, path in self.files.items():
            (old, sound), facts = before[title]
            new, sound_now = tag_of(path)
            print(f"\n  {path.name}")
            for name, value in old.items():
                mark = " " if value == new[name] else "*"
                print(f"  {mark} {name:<8} {value:<32} {new[name]}".rstrip())
            require(sound == sound_now, f"the sound of {title} has changed")
            require(path.stat().st_mtime_ns == facts.st_mtime_ns
                         and path.stat().st_size == facts.st_size,
                         f"size or time of {title} has changed")
        light, landing = (tag_of(path)[0] for path in self.files.values())
        require((light["Artist"], light["Genre"], light["Comment"], light["Year"])
                     == (ARTIST, "Folk", "live Length='185'", "1998"), "the tag was not written")
        require((landing["Album"], landing["Track"]) == (ALBUM, "2"),
                     "the tag was not written")
        print()
        say("Year and remark stayed, and so did every byte before the tags, the sizes and "
                 "the times of the files, by which albums are numbered.")

    def update_database(self):
        chapter("ID3Update=1: the database follows the tags")
        say("The same rows in the other direction: length and genre are taken from them, "
                 "names never.")
        print()
        query = ("SELECT Tracks.Title, Minutes, Seconds, Genre FROM Tracks INNER JOIN Spinner ON "
                 "Tracks.Title = Spinner.Song ORDER BY Track")
        self.place.show(query)
        self.run("ID3Update")
        print()
        self.place.show(query)
        row = self.place.rows(query)[0]
        require((row["Minutes"], row["Seconds"], row["Genre"]) == (3, 34, "Pop"),
                     "length and genre were not taken")

    def choose(self, mode):
        """Switches one mode on and all others off."""
        for name in ("Reconcile", "ID3Write", "ID3Update"):
            self.place.choose(name, int(name == mode))

    def run(self, mode):
        self.choose(mode)
        self.place.run()

    def execute(self, statement):
        self.place.quillon("db", "exec", self.place.database, statement)


def tell(demo):
    TagStory(demo).tell()
