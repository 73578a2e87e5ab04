"""Files as programs of today write them: long titles, any script, tags of version 2."""

import sound_files
from telling import chapter, require, say

# File below the source folder -> song, artist, album, number.
FILES = {
    "01 dawn.mp3": ("A Title That Goes On for Far Longer Than Thirty Characters",
                    "Ölvindr Skógur", "Songs for a Long Winter Evening Indoors", 1),
    "02 snow.mp3": ("雪の降る町を", "Ölvindr Skógur",
                    "Songs for a Long Winter Evening Indoors", 2),
    "03 light.mp3": ("Ljós", "Ölvindr Skógur", "Songs for a Long Winter Evening Indoors", 3),
}
SONGS = "SELECT Track, Title FROM Tracks ORDER BY Track, Title"
COVER = bytes([0xFF, 0xD8, 0xFF, 0xD9])


def make_files(folder):
    for name, (song, artist, album, number) in FILES.items():
        facts = {"TIT2": song, "TPE1": artist, "TALB": album, "TRCK": f"{number}/{len(FILES)}"}
        sound_files.write(folder / name, sound_files.tag2(facts) + sound_files.silence(2)
                          + sound_files.tag(song, artist, album, track=number))
    sound_files.write(folder / "cover.jpg", COVER)


def tell(demo):
    chapter("Files of today")
    source = demo.folder / "Today"
    make_files(source)
    say("So far the story kept to tags of version 1, which end after 30 characters of Western "
        f"letters. {demo.shown(source)} has files as programs write them now. A library that "
        "quillon init makes takes the better tag, field by field:")
    print()
    today = demo.elsewhere("today")
    today.music = demo.folder / "Music of today"
    today.music.mkdir()
    today.quillon("init", today.host, "--music", today.music)
    today.choose("FromFilesPath", today.setting("LibraryRoot")[:2] + "\\Today")
    today.choose("AddFiles", 1)
    today.run()
    print()
    today.show(SONGS)
    rows = today.rows(SONGS)
    require([row["Title"] for row in rows] == [facts[0] for facts in FILES.values()],
            "the titles are not those of the better tags")

    today.choose("AddFiles", 0)
    today.reconcile()
    after = today.all_rows()
    today.reconcile()
    require(today.all_rows() == after, "a second run changed rows")
    print()
    say("Numbers come from the tags, too, so a copy of this library keeps its order. A second run "
        "changed nothing.")
