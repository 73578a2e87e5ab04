"""What stands in the jukebox database before the first run: a household's history."""

from sample_library import COLLECTION, song_file

OWNED = 1001


def text(value):
    return '"' + value.replace('"', '""') + '"' if value is not None else "Null"


def album_row(identifier, artist, title, player, tracks, position=0, played=0):
    return ("INSERT INTO Albums (CDJID, Artist, Title, Player, Tracks, [Position], TimesPlayed)"
            f" VALUES ({text(identifier)}, {text(artist)}, {text(title)}, {player}, {tracks},"
            f" {position}, {played})")


def track_row(identifier, number, artist, title, file=None, played=0):
    return ("INSERT INTO Tracks (CDJID, Track, Artist, Title, SoundFile, TimesPlayed)"
            f" VALUES ({text(identifier)}, {number}, {text(artist)}, {text(title)}, {text(file)},"
            f" {played})")


def statements(root):
    """INSERT statements; `root` is the library root as the program sees it."""

    def file_of(artist, album, number, title):
        return f"{root}\\{artist}\\{album}\\{song_file(number, title)}"

    # Discs in the slots of two players: none of the tool's business.
    for identifier, artist, title, player, songs in (
            ("3A0B1C0D", "The Tin Weathervanes", "Rust and Ribbon", 1, ["North", "West", "Calm"]),
            ("5E0F2A11", "The Tin Weathervanes", "Gale", 1, ["Force 8", "Force 9"]),
            ("7C0D4B12", "Marble Foxes", "Slow Quarry", 2, ["Chisel", "Dust", "Vein", "Polish"])):
        yield album_row(identifier, artist, title, player, len(songs), int(player) * 10)
        for number, song in enumerate(songs, 1):
            yield track_row(identifier, number, artist, song)

    # Known for long and often played; the file of its second song had another name then.
    artist, album = "The Papier-Mâché Owls", "Two Left Wings"
    yield album_row("252E671073EC0001", artist, album, OWNED, 3, played=12)
    for number, song in enumerate(COLLECTION[artist][album], 1):
        title = "Allso Left" if number == 2 else song
        yield track_row("252E671073EC0001", number, artist, title,
                        file_of(artist, album, number, title), 10 + number)

    # One of its songs has since been put into the folder of another album.
    artist, album, other = "D'Arcy & the Half-Moons", "Other Halves", "Crescent"
    yield album_row("252E671073EC0002", artist, album, OWNED, 4)
    for number, song in enumerate(COLLECTION[artist][album], 1):
        yield track_row("252E671073EC0002", number, artist, song,
                        file_of(artist, album, number, song), 3)
    yield track_row("252E671073EC0002", 4, artist, "Gibbous", file_of(artist, other, 4, "Gibbous"),
                    31)

    # Its folder is gone.
    artist, album = "Marble Foxes", "Lost at the Ferry"
    yield album_row("252E671073EC0003", artist, album, OWNED, 2)
    for number, song in enumerate(["Ticket", "Missed It"], 1):
        yield track_row("252E671073EC0003", number, artist, song,
                        file_of(artist, album, number, song))

    # An accident with a copy of the database: two albums with one identifier.
    artist = "Velvet Tugboat 7"
    for album in ("Pull", "Pull (copy)"):
        yield album_row("252E671073EC0004", artist, album, OWNED, 3)
    for number, song in enumerate(COLLECTION[artist]["Pull"], 1):
        yield track_row("252E671073EC0004", number, artist, song,
                        file_of(artist, "Pull", number, song))
