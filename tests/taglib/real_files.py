#!/usr/bin/env python3
"""real_files.py TAG_TOOL PROGRAM   makes a library of 200 music files, made and tagged by other programs,
asks mutagen and ffprobe about them and this project, and then takes them through all modes with the keys
for music of today: each brings the library in line, and once more changes nothing."""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path[:0] = [str(Path(__file__).resolve().parents[1] / folder)
                for folder in ("scenarios", "outside")]
from mutagen import id3  # noqa: E402
from mutagen.apev2 import APENoHeaderError, APEv2  # noqa: E402

from processes import Failed  # noqa: E402
import many_files  # noqa: E402
import sound_files  # noqa: E402
from stage import Stage  # noqa: E402

FIELDS = ("title", "artist", "album", "year", "comment", "track", "genre", "disc", "seconds")
FRAMES = {"title": "TIT2", "artist": "TPE1", "album": "TALB", "track": "TRCK", "disc": "TPOS"}
APE_KEYS = {"title": "Title", "artist": "Artist", "album": "Album", "year": "Year",
            "comment": "Comment", "track": "Track", "genre": "Genre", "disc": "Disc"}


def require(condition, what):
    if not condition:
        raise Failed(what)


def first(values):
    return str(values[0]) if values else ""


def of_id3(tags):
    said = {field: first(tags[name].text) if name in tags else ""
            for field, name in FRAMES.items()}
    said["year"] = first(tags["TDRC"].text)[:4] if "TDRC" in tags else ""
    said["genre"] = tags["TCON"].genres[-1] if "TCON" in tags and tags["TCON"].genres else ""
    said["comment"] = next((first(frame.text) for frame in tags.getall("COMM")
                            if frame.desc in ("", "ID3v1 Comment")), "")
    return said


def id3_of(path, **options):
    try:
        return of_id3(id3.ID3(path, **options))
    except id3.ID3NoHeaderError:
        return {}


def expected(path):
    """What mutagen reads: of version 2, else of APE, field by field behind that of version 1."""
    said = id3_of(path, load_v1=False)
    if not said:
        try:
            ape = APEv2(path)
            said = {field: str(ape.get(key, "")) for field, key in APE_KEYS.items()}
        except APENoHeaderError:
            said = {}
    end = path.read_bytes()[-128:]
    old = {}
    if end.startswith(b"TAG"):
        tags = id3.ID3()
        for frame in id3.ParseID3v1(end).values():
            tags.add(frame)
        old = of_id3(tags)
    both = {field: said.get(field) or old.get(field, "") for field in FIELDS[:-1]}
    for number in ("track", "disc"):
        both[number] = re.match(r"0*(\d*)", both[number]).group(1)
    return both


def seconds_of(path):
    told = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of",
                           "csv=p=0", str(path)], capture_output=True, text=True, check=True)
    return float(told.stdout)


def compare(tool, files):
    """What tags and sounds say, as this project and the others read them."""
    lengths = {sound: seconds_of(sound) for sound in {file.sound for file in files}}
    paths = [file.path for file in files]
    lines = subprocess.run([tool, "read-all"], input="".join(f"{path}\n" for path in paths),
                           capture_output=True, text=True, check=True).stdout.split("\n")
    for file, line in zip(files, lines):
        read = dict(zip(FIELDS, line.split("\t")))
        for field, value in expected(file.path).items():
            require(read[field] == value, f"{file.path}: {field} is {value!r} for mutagen and "
                                          f"{read[field]!r} here")
        length = lengths[file.sound]
        require(read["seconds"] and abs(int(read["seconds"]) - length) <= 1,
                f"{file.path}: {length} s for ffprobe and {read['seconds']!r} here")


def state(folder):
    """Bytes and times of all files."""
    return {str(path.relative_to(folder)): (path.read_bytes(), path.stat().st_mtime_ns)
            for path in sorted(folder.rglob("*")) if path.is_file()}


def differing(before, now):
    return sorted(name for name in before.keys() | now.keys() if before.get(name) != now.get(name))


KEYS = """
[Tags]
Read=best
Write=both
[Removed]
OnlyIdentical=1
[Library]
FollowMovedFiles=1
Numbers=tags
Discs=1
TrackArtists=1
[Missing]
KeepDays=14
[Covers]
FolderImages=1
[Playlists]
Local=1
[Picker]
Style=modern
"""
MODES = ("Reconcile", "AddFiles", "ID3Write", "ID3Update", "AlbumPicker", "PlaToM3u", "MakeRemote")


class Runs:
    """The modes, one after the other, in a library with all keys of today on."""

    def __init__(self, stage):
        self.stage = stage
        with (stage.host / "host.ini").open("a") as host:
            host.write(KEYS)
        (stage.disk / "Covers").mkdir()
        stage.settings |= {"ID3Reconcile": "1", "AlbumCoverFolder": "D:\\Covers\\",
                           "FromFilesPath": r"D:\New", "GenrePlaylist": "1", "ArtistPlaylist": "1"}

    def run(self, mode):
        self.stage.settings |= {name: str(int(name == mode)) for name in MODES}
        self.stage.write_settings()
        logged = len(self.stage.log_messages())
        status, output, errors = self.stage.reconcile()
        log = self.stage.log_messages()[logged:]
        require(status == 0, f"{mode}: exit status {status}\n{output}{errors}\n" + "\n".join(log))
        return log

    def everything(self):
        return {name: state(self.stage.work / folder) for name, folder in
                (("disk", "disk"), ("pages", "host/HTML"))}

    def confirm_unchanged(self, mode):
        """Runs the mode, which has nothing more to do."""
        rows, files = self.stage.all_rows(), self.everything()
        log = self.run(mode)
        for name, now in self.everything().items():
            changed = [path for path in differing(files[name], now)
                       if not path.startswith("jukebox.mdb") and "_Copy Dated_" not in path]
            require(not changed, f"{mode}, once more, has changed {changed}\n" + "\n".join(log))
        for table, now in self.stage.all_rows().items():
            # The comparison notes again what nobody has settled.
            if table != "SpinnerID3Differences":
                require(now == rows[table], f"{mode}, once more, has changed {table}")
        # What a list of the code page cannot hold is told whenever the list is made.
        told = [line for line in log if " has all: " not in line]
        require(not told, f"{mode}, once more, tells\n" + "\n".join(told))


def rows_of(stage, artist, album):
    return stage.query("SELECT Tracks.* FROM Albums INNER JOIN Tracks ON Albums.CDJID=Tracks.CDJID "
                       f"WHERE Albums.Artist='{artist}' AND Albums.Title='{album}' "
                       "ORDER BY Tracks.Track")


def confirm_discs(stage, artist, album, count):
    rows = rows_of(stage, artist, album)
    require([row["Track"] for row in rows] == list(range(1, 2 * count + 1)), f"numbers: {rows}")
    names = [row["SoundFile"].split("\\")[-2:] for row in rows]
    told = [("Intro" if track == 1 else f"Part {track} of disc {disc}", f"CD{disc}")
            for disc in (1, 2) for track in range(1, count + 1)]
    for (folder, name), (title, disc) in zip(names, told):
        require(folder == disc and name.endswith(f"{title}.mp3"),
                f"{album}: {folder}/{name} where {disc}/{title} belongs")


def confirm_library(stage, files):
    """Rows, names and covers say what the tags say."""
    rows = stage.query("SELECT * FROM Tracks")
    require(len(rows) == len(files), f"{len(rows)} rows for {len(files)} files")
    for row in rows:
        length = row["Minutes"] * 60 + row["Seconds"]
        require(abs(length - sound_files.SECONDS) <= 1, f"length of {row}")
    confirm_discs(stage, "Birch", "Long Road", 20)
    confirm_discs(stage, "Fir", "Two", 12)
    hits = rows_of(stage, "Various", "Hits")
    require([row["Artist"] for row in hits] == [f"Guest {track % 7}" for track in range(1, 21)],
            f"artists: {hits}")
    music = stage.disk / "Music"
    whole = [path.name for path in music.rglob("*longer than thirty*")]
    full = "Alder - A title that is longer than thirty characters are.mp3"
    require(len(whole) > 5 and set(whole) == {full}, f"not renamed: {whole}")
    for row in rows:
        path = stage.disk / row["SoundFile"][3:].replace("\\", "/")
        title = expected(path)["title"]
        require(title.startswith(row["Title"]) or not title or row["Title"] in title,
                f"{path}: the title {title!r} has become {row['Title']!r}")
    covers = {path.name for path in (stage.disk / "Covers").iterdir()}
    require({"Birch - Long Road.jpg", "Various - Hits.png", "Fir - Two.jpg"} <= covers,
            f"covers: {covers}")


def take_through_modes(program, made):
    with Stage(program) as stage:
        runs = Runs(stage)
        files = many_files.make(stage.disk, lambda path: expected(path)["title"])
        require(len(files) == many_files.COUNT, f"{len(files)} files")
        made(files)
        for mode in ("AddFiles", "Reconcile", "Reconcile"):
            runs.run(mode)
        confirm_library(stage, files)
        runs.confirm_unchanged("Reconcile")
        runs.confirm_unchanged("AddFiles")
        for mode in ("ID3Update", "ID3Write", "AlbumPicker", "PlaToM3u", "MakeRemote"):
            runs.run(mode)
            runs.confirm_unchanged(mode)
        runs.run("Reconcile")
        confirm_library(stage, files)
        runs.confirm_unchanged("Reconcile")
        stage.confirm_database()


def main():
    tool, program = sys.argv[1:]
    take_through_modes(program, lambda files: compare(tool, files))
    print(f"{many_files.COUNT} files agree")


if __name__ == "__main__":
    try:
        main()
    except Failed as failure:
        sys.exit(f"FAILED: {failure}")
