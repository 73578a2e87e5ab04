#!/usr/bin/env python3
"""real_files.py TAG_TOOL PROGRAM   lets other programs make and tag music files, asks mutagen and
ffprobe about them and this project, and then takes them through reconciliations: the first brings the
library in line, and the next one changes nothing and opens none of them."""

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
from sound_files import make  # noqa: E402
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


def compare(tool, paths):
    lines = subprocess.run([tool, "read-all"], input="".join(f"{path}\n" for path in paths),
                           capture_output=True, text=True, check=True).stdout.split("\n")
    for path, line in zip(paths, lines):
        read = dict(zip(FIELDS, line.split("\t")))
        for field, value in expected(path).items():
            require(read[field] == value, f"{path.name}: {field} is {value!r} for mutagen and "
                                          f"{read[field]!r} here")
        length = seconds_of(path)
        require(read["seconds"] and abs(int(read["seconds"]) - length) <= 1,
                f"{path.name}: {length} s for ffprobe and {read['seconds']!r} here")


def state(folder):
    """Names, bytes and times of all files."""
    return {str(path): (path.read_bytes(), path.stat().st_mtime_ns)
            for path in sorted(folder.rglob("*")) if path.is_file()}


def reconcile(stage):
    status, output, errors = stage.reconcile()
    require(status == 0, f"exit status {status}\n{output}{errors}\n"
                         + "\n".join(stage.log_messages()))


def take_through_runs(program, paths):
    """All files as songs of one album, by names that end after thirty characters."""
    with Stage(program) as stage:
        with (stage.host / "host.ini").open("a") as host:
            host.write("\n[Tags]\nRead=best\n[Removed]\nOnlyIdentical=1\n")
        stage.settings["ID3Reconcile"] = "1"
        stage.write_settings()
        for path in paths:
            title = expected(path)["title"][:30].strip() or "Untagged"
            target = stage.disk / "Music" / "Alder" / path.stem / f"Alder - {title}.mp3"
            target.parent.mkdir(parents=True)
            target.write_bytes(path.read_bytes())
        reconcile(stage)
        reconcile(stage)
        for row in stage.query("SELECT * FROM Tracks"):
            require(row["Minutes"] == 0 and 2 <= row["Seconds"] <= 4, f"no length: {row}")
        music = stage.disk / "Music"
        whole = [path.name for path in music.rglob("*longer than thirty*")]
        full = "Alder - A title that is longer than thirty characters are.mp3"
        require(len(whole) > 5 and set(whole) == {full}, f"not renamed: {whole}")
        before, rows = state(music), stage.all_rows()
        reconcile(stage)
        require(state(music) == before, "the third run has changed files")
        for table, now in stage.all_rows().items():
            if table != "SpinnerID3Differences":
                require(now == rows[table], f"the third run has changed {table}")
        stage.confirm_database()


def main():
    tool, program = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="quillon-tags-") as folder:
        paths = make(Path(folder))
        compare(tool, paths)
        take_through_runs(program, paths)
    print(f"{len(paths)} files agree")


if __name__ == "__main__":
    try:
        main()
    except Failed as failure:
        sys.exit(f"FAILED: {failure}")
