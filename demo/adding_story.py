"""New files come into the library: copies, rows and covers."""

import sound_files
from telling import chapter, require, say

PICTURE = bytes([0xFF, 0xD8, 0xFF, 0xD9])
# File below the source folder -> song, artist, album, number, genre of its tag; nothing: no tag.
NEW_FILES = {
    "from a friend/track07.mp3": ("Polish (again)", "Marble Foxes", "Slow Quarry", 7, 17),
    "from a friend/track08.mp3": ("Gravel", "Marble Foxes", "Slow Quarry", 8, 17),
    "The Second Hand Clocks/Tick/The Second Hand Clocks - Tick.mp3": None,
    "The Second Hand Clocks/Tick/The Second Hand Clocks - Tock.mp3": None,
    "found on the bus.mp3": ("Line 9", "Conductor", "Night Bus", 1, 80),
}
COVER = "The Second Hand Clocks/Tick/front.jpg"
ADDED = "SELECT Albums.Artist, Albums.Title AS Album, Tracks.Track, Tracks.Title AS Song" \
        " FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID WHERE Tracks.ID>{}" \
        " ORDER BY Tracks.ID"
ALBUMS = "SELECT Artist, Title, Tracks, ImageFile FROM Albums WHERE Title='Slow Quarry'" \
         " OR Title='Night Bus' OR Title='Tick' ORDER BY Artist"
EXPECTED = [
    ("Conductor", "Night Bus", 1, "Line 9"),
    ("Marble Foxes", "Slow Quarry", 7, "Polish (again)"),
    ("Marble Foxes", "Slow Quarry", 8, "Gravel"),
    ("Unknown", "Tick", 1, "Tick"),
    ("Unknown", "Tick", 1, "Tock"),
    ("The Second Hand Clocks", "Tick", 1, "Tick"),
    ("The Second Hand Clocks", "Tick", 1, "Tock"),
]


def below(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


def make_new_files(folder):
    for name, facts in NEW_FILES.items():
        content = sound_files.silence(1)
        if facts:
            song, artist, album, number, genre = facts
            content += sound_files.tag(song, artist, album, track=number, genre=genre)
        sound_files.write(folder / name, content)
    sound_files.write(folder / COVER, PICTURE)


def tell(demo):
    chapter("New files")
    source = demo.folder / "New"
    make_new_files(source)
    say(f"In {demo.shown(source)} lie files to be added: some with tags, two without, a picture "
        "beside those.")
    for name in below(source):
        print(f"  {name}")

    drive = demo.setting("LibraryRoot")[:2]
    demo.choose("FromFilesPath", drive + "\\New")
    demo.choose("AddFiles", 1)
    music, given = below(demo.music), below(source)
    before = demo.all_rows()
    last = max(row["ID"] for row in before["Tracks"])
    print()
    demo.show(ALBUMS)
    print()
    demo.run()
    print()
    demo.show(ALBUMS)
    print()
    demo.show(ADDED.format(last))
    copied = [name for name in below(demo.music) if name not in music]
    print()
    print(f"New in {demo.shown(demo.music)}:")
    for name in copied:
        print(f"  {name}")
    added = demo.rows(ADDED.format(last))
    require([tuple(row.values()) for row in added] == EXPECTED, "other tracks were added")
    require(len(copied) == len(EXPECTED), "not every track has its file")
    require(below(source) == given, "the source files have changed")
    covers = demo.rows("SELECT ImageFile FROM Albums WHERE Title='Tick'")
    require(all(row["ImageFile"].endswith(" - Tick.jpg") for row in covers), "a cover is missing")

    after = demo.all_rows()
    demo.reconcile()
    require(demo.all_rows() == after, "a second run changed rows")
    demo.choose("AddFiles", 0)
    demo.reconcile()
    keys = [(row["ID"], row["SoundFile"]) for row in after["Tracks"]]
    require([(row["ID"], row["SoundFile"]) for row in demo.all_rows()["Tracks"]] == keys,
            "a reconciliation changed which tracks there are")
    print()
    say("A tag tells where a file belongs; without one its folders do. Sub-folders are visited "
        "twice, once with no artist and once as an artist of their own, so files without a tag "
        "come in under both. The picture became the cover of both albums. A second such run added "
        "nothing, and a reconciliation kept every row.")
