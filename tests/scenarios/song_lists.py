"""Playlists by the songs that they name: written and read here without the program, with the rows
of the database as mdb-export prints them."""

HEADER = "CDJ Playlist V1.1"


def rows(stage):
    """The tracks of the database that have a sound file."""
    return [row for row in stage.exported("Tracks") if row["SoundFile"]]


def text(lines):
    """The bytes of a playlist of these lines."""
    return "".join(f"{line}\r\n" for line in [HEADER, *lines]).encode("cp1252")


def write(stage, name, sound_files):
    """A playlist of these sound files, by the numbers that they have at present."""
    line_of = {row["SoundFile"]: f"{row['CDJID']} {int(row['Track']) - 1}" for row in rows(stage)}
    (stage.disk / "Lists" / name).write_bytes(text(line_of[file] for file in sound_files))


def contents(stage):
    """The bytes of each playlist."""
    return {file.name: file.read_bytes() for file in (stage.disk / "Lists").iterdir()}


def put_back(stage, playlists):
    for file in (stage.disk / "Lists").iterdir():
        file.unlink()
    for name, content in playlists.items():
        (stage.disk / "Lists" / name).write_bytes(content)


def entries(content):
    """The entries of a playlist, each as the two words of its line."""
    return [line.split(" ") for line in content.decode("cp1252").split("\r\n")[1:-1]]


def songs(stage):
    """The sound files that each playlist names, in its order; None for an entry that names none."""
    file_at = {(row["CDJID"], int(row["Track"]) - 1): row["SoundFile"] for row in rows(stage)}
    return {name: [file_at.get((cdjid, int(index))) for cdjid, index in entries(content)]
            for name, content in contents(stage).items()}
