"""The story of tags that disagree: a small library of its own, compared, put right and told of."""

import os

import sound_files
from telling import chapter, require, say

ARTIST, ALBUM = "Cedar Post", "Rain Diary"

# File name -> tag. The last one is a copy that someone made long ago.
FILES = {
    "Cedar Post - Drizzle.mp3": {"song": "Drizzle", "track": 1, "comment": "Length='181'"},
    "Cedar Post - Downpour.mp3": {"song": "Cloudburst", "track": 2, "comment": "Length='200'"},
    "Cedar Post - Puddle [demo].mp3": {"song": "Puddle (demo)", "track": 3,
                                       "comment": "Length='95'"},
    "Cedar Post - Gutter.mp3": {"song": "Gutter", "artist": "Cedar Toast", "track": 4,
                                "comment": "Length='121'"},
    "Cedar Post - Thaw.mp3": {"song": "Thaw", "track": 5, "comment": "Length='184'"},
    "07 Drizzle.mp3": {"song": "Drizzle", "track": 6, "comment": "Length='181'"},
}
AFTERWARDS = ["Cedar Post - Cloudburst.mp3", "Cedar Post - Drizzle.mp3", "Cedar Post - Gutter.mp3",
              "Cedar Post - Puddle (demo).mp3", "Cedar Post - Thaw.mp3"]
PLAYS = "SELECT Title, Track, TimesPlayed AS Plays FROM Tracks ORDER BY Track"
FIRST_TIME = 1577836800


class VerificationStory:
    """Another library with a host folder of its own."""

    def __init__(self, demo):
        self.place = demo.elsewhere("verification-host")
        self.music = demo.folder / "Disagreeing Music"
        self.album = self.music / ARTIST / ALBUM

    def names(self):
        return sorted(os.listdir(self.album))

    def prepare(self):
        for number, (name, tag) in enumerate(FILES.items()):
            fields = {"artist": ARTIST, "album": ALBUM} | tag
            sound_files.write(self.album / name, sound_files.silence(1) + sound_files.tag(**fields),
                              FIRST_TIME + number * 60)
        self.place.quillon("init", self.place.host, "--music", self.music)
        self.place.take_artists_of_folders()
        self.place.reconcile()
        for change in ("TimesPlayed = Track * 7", "Minutes = 3, Seconds = 0 WHERE Title = 'Thaw'",
                       "Minutes = 3, Seconds = 0 WHERE Title = 'Drizzle'"):
            self.place.quillon("db", "exec", self.place.database, f"UPDATE Tracks SET {change}")

    def tell(self):
        chapter("Tags and names")
        say("Another library, of one album. Its database knows all six files and how often "
                 "they were played. The tags tell it differently in places.")
        self.prepare()
        print()
        for name, tag in FILES.items():
            print(f"  {name:<34}tag: {tag['song']}, {tag.get('artist', ARTIST)}, "
                  f"{tag['comment']}")
        print()
        self.place.show(PLAYS)
        print()
        say("A run with ID3Reconcile=1 and ReconcileOption=1 compares them. Files take the "
                 "titles of their tags for names, and round brackets for square ones.")
        for key in ("ID3Reconcile", "ReconcileOption"):
            self.place.choose(key, 1)
        print()
        output = self.place.reconcile()
        print("".join(line + "\n" for line in output.splitlines() if "is kept as" in line), end="")
        for name in self.names():
            print(f"  {name}")
        print()
        say("Their rows have come along with all plays; the copy was moved out of the library, "
                 "and its row has gone.")
        print()
        self.place.show(PLAYS)
        print()
        csv = self.place.host / "Data" / "Quillon" / "QuillonReconcile.csv"
        say(f"What disagreed is in the table SpinnerID3Differences and in "
                 f"{self.place.shown(csv)} (time, field, tag, expected, artist, album, song). One "
                 "second more or less in a length is no difference.")
        print()
        lines = csv.read_bytes().decode("cp1252").splitlines()
        print("".join(f"  {line}\n" for line in lines), end="", flush=True)
        self.check(lines)

    def check(self, lines):
        require(self.names() == AFTERWARDS, f"the files are {self.names()}")
        rows = {row["Title"]: row for row in self.place.rows(PLAYS)}
        require({title: row["Plays"] for title, row in rows.items()}
                     == {"Drizzle": 7, "Cloudburst": 14, "Puddle (demo)": 21, "Gutter": 28,
                         "Thaw": 35}, "a song has lost its plays")
        kept = [path.name for path in (self.place.host / "Removed").rglob("*.mp3")]
        require(kept == ["07 Drizzle.mp3"], "the copy was not kept")
        told = sorted(line.split(",")[1] for line in lines)
        require(told == ["Artist", "Comment", "Song", "Song"], f"the differences are {told}")
        self.place.quillon("db", "check", self.place.database)


def tell(demo):
    VerificationStory(demo).tell()
