"""What is there before the run that is disturbed: for each mode a library with a history, and
something to do for a run."""

import os

from library import DISC, FIRST_DAY, Library

import sound_files

# Artist -> album -> songs in their order.
SONGS = {
    "Alder": {"First Light": ["Dawn", "Noon", "Dusk"], "Second Growth": ["Sapling", "Ring"]},
    "Brook": {"Stones": ["Ripple", "Eddy", "Ford"]},
    "Fennel Road": {"Harbour Light": ["Mooring", "Tide"]},
    "Marble Foxes": {"Chisel": ["Dust", "Vein"]},
}
GENRES = {"Alder": "Folk", "Brook": "Rock", "Fennel Road": "Folk", "Marble Foxes": "Rock"}
GENRE_NUMBERS = {"Folk": 80, "Rock": 17}
PICTURE = b"\xff\xd8 picture of "


def tag_of(artist, album, title, track, **others):
    return {"artist": artist, "album": album, "song": title, "track": track,
            "genre": GENRE_NUMBERS[GENRES.get(artist, "Rock")], "comment": "Length='185'", **others}


def place_of(artist, album, title):
    return f"Music/{artist}/{album}/{artist} - {title}.mp3"


def add_albums(library, songs, place=place_of, day=0):
    for artist, albums in songs.items():
        for album, titles in albums.items():
            for number, title in enumerate(titles, 1):
                day += 1
                library.add_song(place(artist, album, title), title, day,
                                 tag_of(artist, album, title, number))


def add_cover(folder, name):
    sound_files.write(folder / name, PICTURE + name.encode(), FIRST_DAY)


def write_history(library):
    """Ratings and play counts that differ from song to song, and a disc in a player."""
    for table in ("Albums", "Tracks"):
        library.execute(
            f"UPDATE {table} SET TimesPlayed = ID + 2, TimePlayed = ID + 3, Rating1 = ID + 4,"
            " Rating2 = ID + 5, Rating3 = 3, Rating4 = ID, DateAdded = #2/3/2011 4:05:06 AM# + ID,"
            " DateLastPlayed = #7/8/2019 9:10:11 PM# + ID")
    library.execute("UPDATE Spinner SET Playcount = ID + 6, Playlist = 'Evening'")
    for artist, genre in GENRES.items():
        # The genre of an artist's further songs is read off a link.
        library.execute(
            f"UPDATE Spinner SET Genre = '{genre}', FileName = 'rtsp://localhost/spinlinks/000-{genre}"
            f"-000.rm' WHERE Artist = '{artist}'")
    library.execute("INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks, TimesPlayed)"
                    f" VALUES ('{DISC}', 'Tin', 'Weathervanes', 1, 2, 41)")
    for number, title in enumerate(("North", "West"), 1):
        library.execute("INSERT INTO Tracks (CDJID, Track, Title, Artist, Rating1, TimesPlayed)"
                        f" VALUES ('{DISC}', {number}, '{title}', 'Weathervanes', 4, {number})")


def write_lists(library):
    line = library.line_of()
    songs = sorted(line)
    library.write_list("Backwards.pla", [line[song] for song in reversed(songs)])
    library.write_list("Every second.pla", [line[song] for song in songs[::2]])
    album = line[songs[0]].split(" ")[0]
    library.write_list("Whole.pla", [line[songs[-1]], f"{album} -1", f"{DISC} -1"])
    library.write_list("Discs.pla", [f"{DISC} 0", line[songs[1]], f"{DISC} 1"])


def with_history(library):
    """The library has been run for years; a household has rated songs and made lists."""
    library.settle()
    write_history(library)
    write_lists(library)
    library.settle()


def tree(library, extra_songs=lambda library: None):
    library.make()
    add_albums(library, SONGS)
    extra_songs(library)
    add_cover(library.covers, "Alder - First Light.jpg")
    add_cover(library.covers, "Brook - Stones.gif")
    with_history(library)


def change_files(library):
    """Songs come and go, and others take their numbers."""
    library.add_song(place_of("Alder", "First Light", "Morning"), "Morning", -1,
                     tag_of("Alder", "First Light", "Morning", 4))
    add_albums(library, {"Birch": {"Quiet": ["Hush"]}}, day=50)
    (library.disk / place_of("Brook", "Stones", "Eddy")).unlink()
    for title in SONGS["Marble Foxes"]["Chisel"]:
        (library.disk / place_of("Marble Foxes", "Chisel", title)).unlink()
    (library.music / "Marble Foxes/Chisel").rmdir()
    library.touch(place_of("Fennel Road", "Harbour Light", "Mooring"), 60)


def reconcile(library):
    tree(library)
    change_files(library)
    (library.covers / "Brook - Stones.gif").unlink()
    add_cover(library.covers, "Fennel Road - Harbour Light.jpg")
    library.set(ReconcileOption=1)


def reconcile_tags(library):
    """Files that get other names by their tags: a title, brackets, a duplicate, two that change
    places, and one that takes the name another one leaves."""

    def to_be_renamed(library):
        library.add_song("Music/Alder/Second Growth/Alder - Bark [live].mp3", "Bark", 40,
                         tag_of("Alder", "Second Growth", "Bark (live)", 3))
        library.add_song("Music/Marble Foxes/Chisel/Marble Foxes - Copy.mp3", "Dust", 41,
                         tag_of("Marble Foxes", "Chisel", "Dust", 1))

    tree(library, to_be_renamed)
    for artist, album, old, new, number in (
            ("Alder", "First Light", "Noon", "Midday", 2),
            ("Brook", "Stones", "Ripple", "Eddy", 1), ("Brook", "Stones", "Eddy", "Weir", 2),
            ("Fennel Road", "Harbour Light", "Mooring", "Tide", 1),
            ("Fennel Road", "Harbour Light", "Tide", "Mooring", 2)):
        library.retag(place_of(artist, album, old), tag_of(artist, album, new, number))
    library.retag(place_of("Alder", "First Light", "Dusk"),
                  tag_of("Adler", "First Light", "Dusk", 1, genre=9))
    library.set(ID3Reconcile=1, ReconcileOption=1)


def flat(library):
    library.make()
    library.set(FlatStructure=1)

    def place(artist, _, title):
        return f"Music/{artist}_{title}.mp3"

    add_albums(library, SONGS, place)
    with_history(library)
    add_albums(library, {"Birch": {"Quiet": ["Hush"]}}, place, day=-9)
    (library.disk / place("Brook", "", "Eddy")).unlink()


def several_roots(library):
    library.make()
    library.set(LibraryDepthOption=1)
    roots = {"Alder": "Music/Folk", "Brook": "Music/Rock", "Fennel Road": "Elsewhere",
             "Marble Foxes": "Attic"}

    def place(artist, album, title):
        return f"{roots[artist]}/{artist}/{album}/{title}.mp3"

    (library.music / "more.txt").write_bytes(b"D:\\Elsewhere\r\nD:\\Attic\r\n")
    add_albums(library, SONGS, place)
    with_history(library)
    library.add_song(place("Brook", "Stones", "Beck"), "Beck", -1,
                     tag_of("Brook", "Stones", "Beck", 4))
    (library.disk / place("Fennel Road", "Harbour Light", "Tide")).unlink()


def playlists_only(library):
    tree(library)
    line = library.line_of()
    library.write_list("Twice.pla", [line["Dawn"], "", line["Ford"], line["Dawn"]])
    library.execute("DELETE * FROM Tracks WHERE Title = 'Vein'")
    library.execute("UPDATE Spinner SET Genre = 'Jazz' WHERE Artist = 'Brook'")
    library.set(PlaylistsOnly=1)


def add_files(library):
    tree(library)
    library.add_song("New/x.mp3", "Morning", 50, tag_of("Alder", "First Light", "Morning", 4))
    add_albums(library, {"Birch": {"Quiet": ["Hush", "Lull"]}},
               lambda artist, album, title: f"New/{artist}/{album}/{title}.mp3", day=51)
    library.add_song("New/Cedar/Roots/Cedar - Deep.mp3", "Deep", 54)
    add_cover(library.disk / "New/Birch/Quiet", "front.jpg")
    library.set(AddFiles=1, FromFilesPath=r"D:\New")


def with_differences(library):
    """Tags that disagree with the database, and the rows that a comparison makes of it."""
    tree(library)
    library.retag(place_of("Alder", "First Light", "Dawn"),
                  tag_of("Adler", "First Light", "Dawn", 1, genre=9, comment="Length='99'"))
    library.retag(place_of("Brook", "Stones", "Ford"),
                  tag_of("Brook", "Stone", "Ford", 3, comment="Length='42'"))
    library.retag(place_of("Fennel Road", "Harbour Light", "Tide"),
                  tag_of("Fenel Road", "Harbour Light", "Tide", None, genre=9))
    library.set(ID3Reconcile=1)
    library.settle()
    library.set(ID3Reconcile=0, Reconcile=0)


def id3_write(library):
    with_differences(library)
    library.set(ID3Write=1)


def id3_update(library):
    with_differences(library)
    library.set(ID3Update=1)


def album_picker(library):
    """There are pages already; since then songs and covers have come."""
    tree(library)
    library.set(AlbumPicker=1, PickerMinimum=1, ImagesWide=2, ImagesHigh=1)
    library.settle()
    add_cover(library.covers, "Fennel Road - Harbour Light.jpg")
    library.set(AlbumPicker=0)
    library.settle()
    library.set(AlbumPicker=1)


def pla_to_m3u(library):
    tree(library)
    (library.host / "M3u/Mine.m3u").write_bytes(b"#EXTM3U\r\nD:\\Mine.mp3\r\n")
    (library.host / "M3u/Whole.m3u").write_bytes(b"#EXTM3U\r\nD:\\Old.mp3\r\n")
    library.set(PlaToM3u=1)


def make_remote(library):
    tree(library)
    with open(library.host / "host.ini", "a", encoding="utf-8") as settings:
        settings.write("\n[Drives]\n\\\\nas\\music=../disk\n\\\\nas\\host=.\n")
    library.set(MakeRemote=1, LibraryRoot=r"\\nas\music\Music", AlbumCoverFolder=r"\\nas\host\Covers",
                PlayListPath="\\\\nas\\host\\Playlists\\", PlayListPath2="\\\\nas\\host\\M3u\\")


def m3u_to_pla(library):
    tree(library)
    library.set(M3uToPla=1)


def head_of(artist, album, title, track, picture=b""):
    return sound_files.tag2({"TIT2": title, "TPE1": artist, "TALB": album, "TRCK": str(track),
                             "TCON": GENRES.get(artist, "Rock")}, picture)


def add_modern(library, artist, album, title, track, disc="", day=0, picture=b""):
    """A song with tags of both versions; `disc` is the name of its folder."""
    folder = f"Music/{artist}/{album}/{disc}".rstrip("/")
    library.add_song(f"{folder}/{artist} - {title}.mp3", title, day,
                     tag_of(artist, album, title, track),
                     head_of(artist, album, title, track, picture))


def modern_tree(library):
    """Albums with pictures in their songs, and one of two discs."""
    library.make(modern=True)
    for artist, albums in SONGS.items():
        for album, titles in albums.items():
            for number, title in enumerate(titles, 1):
                disc = f"CD{number}" if album == "Harbour Light" else ""
                add_modern(library, artist, album, title, number, disc, number,
                           PICTURE + album.encode() if number == 2 else b"")
    with_history(library)


def modern(library):
    """An album and a song get other names, a song is missing for the first time, and pictures, tags
    and a disc come."""
    modern_tree(library)
    (library.music / "Alder/First Light").rename(library.music / "Alder/Light")
    (library.music / "Brook/Stones/Brook - Ford.mp3").rename(
        library.music / "Brook/Stones/Brook - Crossing.mp3")
    (library.disk / place_of("Marble Foxes", "Chisel", "Vein")).unlink()
    add_modern(library, "Fennel Road", "Harbour Light", "Anchor", 1, "CD3", 60)
    add_modern(library, "Birch", "Quiet", "Hush", 1, day=61, picture=PICTURE + b"Quiet")
    library.set(ID3Reconcile=1, ReconcileOption=1)


def id3_write_both(library):
    """Tags of both versions are other than the database; one has no room for the right texts."""
    modern_tree(library)
    for artist, album, title, said in (("Alder", "First Light", "Dawn", "Adler"),
                                       ("Brook", "Stones", "Ford", "B")):
        path = library.disk / place_of(artist, album, title)
        modified = path.stat().st_mtime
        library.add_song(path.relative_to(library.disk), title,
                         tag=tag_of(said, album, title, 1), head=head_of(said, album, title, 1))
        os.utime(path, (modified, modified))
    library.set(ID3Reconcile=1)
    library.settle()
    library.set(ID3Reconcile=0, Reconcile=0, ID3Write=1)


MODES = {function.__name__.replace("_", "-"): function for function in (
    reconcile, reconcile_tags, flat, several_roots, playlists_only, add_files, id3_write,
    id3_update, album_picker, pla_to_m3u, make_remote, m3u_to_pla, modern, id3_write_both)}


def prepare(mode, folder, program):
    library = Library(folder, program)
    MODES[mode](library)
    library.remove_traces()
    return library
