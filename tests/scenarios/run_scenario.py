#!/usr/bin/env python3
"""run_scenario.py PROGRAM FOLDER   plays one scenario; README.md tells how a folder is read."""

import difflib
import os
import re
import subprocess
import sys
from datetime import datetime
from pathlib import Path

from stage import NOBODY, Failed, Stage

import sound_files

DEFAULT_TIME = datetime(2020, 1, 1).timestamp()


def lines_of(file):
    """Lines that say something; "#" in the first column begins a remark."""
    if not file.exists():
        return []
    return [line for line in file.read_text("utf-8").splitlines()
            if line.strip() and not line.startswith("#")]


def local_path(stage, text):
    """A path below the disk; \\xHH stands for one byte of a name."""
    raw = re.sub(rb"\\x([0-9A-F]{2})", lambda match: bytes([int(match[1], 16)]),
                 text.strip().encode("utf-8"))
    return os.fsdecode(os.fsencode(stage.disk) + b"/" + raw)


def text_of(lines):
    """Lines with "; " between them; a ";" at the end stands for the last line end."""
    return lines.replace("; ", "\r\n").removesuffix(";") + ("\r\n" if lines.endswith(";") else "")


def make_file(stage, line):
    """PATH | DATE | WHAT; "- PATH" removes; "PATH -> PATH" renames; "PATH/" is an empty folder."""
    if line.startswith("- "):
        os.remove(local_path(stage, line[2:]))
        return
    if " -> " in line:
        old, new = (local_path(stage, part) for part in line.split(" -> "))
        os.makedirs(os.path.dirname(new), exist_ok=True)
        os.rename(old, new)
        return
    parts = [part.strip() for part in re.split(r" \|(?= |$)", line)] + ["", ""]
    path, date, what = local_path(stage, parts[0]), parts[1], parts[2]
    if path.endswith("/"):
        os.makedirs(path, exist_ok=True)
        return
    modified = time_of(date)
    if what.startswith("lines: "):
        content = text_of(what[7:]).encode("cp1252")
    elif what.startswith("bytes: "):
        content = b"x" * int(what[7:])
    else:
        content = tagged_sound(what)
    sound_files.write(path, content, modified)


def time_of(date):
    return datetime.fromisoformat(date).timestamp() if date else DEFAULT_TIME


def tagged_sound(what):
    """A short MP3 file; with tag fields ("song=a; track=2") it ends in that tag. "sound=9" makes its
    sound longer, "encoding=utf-8" is that of the tag's texts."""
    fields = dict(field.strip().split("=", 1) for field in what.split(";")) if what else {}
    content = sound_files.silence(0.1 * int(fields.pop("sound", 1)))
    if fields:
        for number in ("track", "genre"):
            if number in fields:
                fields[number] = int(fields[number])
        content += sound_files.tag(**fields)
    return content


def set_the_scene(stage, before):
    for line in lines_of(before / "settings.ini"):
        key, value = line.split("=", 1)
        stage.settings[key] = value
    stage.write_settings()
    if (before / "host.ini").exists():
        with open(stage.host / "host.ini", "a", encoding="utf-8") as host:
            host.write((before / "host.ini").read_text("utf-8"))
    for line in lines_of(before / "files.txt"):
        make_file(stage, line)
    for line in lines_of(before / "rows.sql"):
        stage.execute(line)
    if (before / "prepare.sh").exists():
        subprocess.run(["bash", "-euo", "pipefail", before / "prepare.sh"], cwd=stage.work,
                       check=True, env=dict(os.environ, QUILLON=str(stage.program)))


def shown(value):
    if value is None:
        return "Null"
    return '""' if value == "" else str(value)


def table_rows(file):
    """The first line names the fields, the others hold a row each, with " | " between values."""
    header, *rows = [[cell.strip() for cell in line.split(" | ")] for line in lines_of(file)]
    return header, rows


def compare(what, expected, actual):
    if expected != actual:
        difference = difflib.unified_diff(expected, actual, "expected", "actual", lineterm="", n=9)
        raise Failed(f"{what}:\n" + "\n".join(difference))


def compare_table(stage, file):
    fields, expected = table_rows(file)
    select = ", ".join(f"[{field}]" for field in fields)
    rows = stage.query(f"SELECT {select} FROM [{file.stem}]")
    actual = [[shown(row[field]) for field in fields] for row in rows]
    compare(f"rows of {file.stem}", sorted(" | ".join(row) for row in expected),
            sorted(" | ".join(row) for row in actual))


def compare_log(stage, after, already):
    """Exact messages in order, or some of them."""
    messages = stage.log_messages()[already:]
    if (after / "log-has.txt").exists():
        compare_texts("log", after / "log-has.txt", "\n".join(messages))
    else:
        compare("log", lines_of(after / "log.txt"), messages)


def compare_tree(stage, folder, file):
    actual = []
    for path in folder.rglob("*"):
        name = stage.neutral(os.fsencode(path.relative_to(folder)).decode("utf-8", "replace"))
        actual.append(name + "/" if path.is_dir() else name)
    compare(file.stem, sorted(lines_of(file)), sorted(actual))


def contents_of(folder):
    return {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def compare_csv(stage, file):
    """The reconciliation file, byte for byte but for the time that begins each line."""
    written = (stage.host / "Data" / "Quillon" / "QuillonReconcile.csv").read_bytes()
    lines = [re.sub(r"^[0-9/]+( [0-9:]+ [AP]M)?,", "TIME,", line)
             for line in written.decode("cp1252").split("\r\n")]
    compare("reconciliation file", lines_of(file) + [""], lines)


def compare_removed(stage, file):
    """The files that were moved to HOST/Removed instead of being deleted."""
    actual = [stage.neutral(path.relative_to(stage.host).as_posix())
              for path in (stage.host / "Removed").rglob("*") if not path.is_dir()]
    compare("removed files", sorted(lines_of(file)), sorted(actual))


def compare_tags(stage, file):
    """Lines as in the files.txt of before: each file's bytes are those, and so is its time."""
    for line in lines_of(file):
        parts = [part.strip() for part in re.split(r" \|(?= |$)", line)] + ["", ""]
        path = local_path(stage, parts[0])
        with open(path, "rb") as stream:
            content = stream.read()
        expected = tagged_sound(parts[2])
        compare(f"last 128 bytes of {parts[0]}", [repr(expected[-128:])], [repr(content[-128:])])
        if content != expected:
            raise Failed(f"{parts[0]} has changed before its tag")
        compare(f"time of {parts[0]}", [str(time_of(parts[1]))], [str(os.stat(path).st_mtime)])


def all_music(stage):
    """Content and time of every file."""
    return {path: (path.read_bytes(), path.stat().st_mtime_ns)
            for path in (stage.disk / "Music").rglob("*") if path.is_file()}


def compare_contents(stage, file):
    """PATH | LINES, as in files.txt."""
    for line in lines_of(file):
        path, text = line.split(" | ", 1)
        content = Path(local_path(stage, path)).read_bytes().decode("cp1252")
        compare(path, text_of(text).splitlines(True), content.splitlines(True))


def compare_texts(what, file, actual):
    """Each line must occur, in this order."""
    rest = actual
    for line in lines_of(file):
        _, found, rest = rest.partition(line)
        if not found:
            raise Failed(f"{what} lacks \"{line}\" (or has it elsewhere):\n{actual}")


def compare_check(stage, file, unprivileged):
    """The first line is the exit status of "quillon check", each further one occurs in what it
    tells, in this order; how that is broken into lines does not count."""
    if not file.exists():
        return
    status, output, errors = stage.call("check", "--host", str(stage.host),
                                        unprivileged=unprivileged)
    expected, *sentences = lines_of(file)
    compare("exit status of check", [expected], [str(status)])
    rest = " ".join((output + errors).split())
    for sentence in sentences:
        _, found, rest = rest.partition(" ".join(sentence.split()))
        if not found:
            raise Failed(f"check lacks \"{sentence}\" (or has it elsewhere):\n{output}{errors}")


def play(stage, before, after):
    set_the_scene(stage, before)
    already = len(stage.log_messages())
    unprivileged = (before / "as-another-account").exists()
    if unprivileged and os.geteuid() == 0:
        for folder, folders, files in os.walk(stage.work):
            for name in [".", *folders, *files]:
                os.chown(os.path.join(folder, name), NOBODY, NOBODY, follow_symlinks=False)
    for folder in lines_of(before / "unreadable.txt"):
        os.chmod(local_path(stage, folder), 0)
    file_before = stage.database.read_bytes() if stage.database.exists() else None
    untouched = (after / "database-untouched").exists()
    unchanged = (after / "rows-unchanged").exists()
    rows_before = stage.all_rows() if unchanged else None
    web_before = contents_of(stage.web)
    music_before = all_music(stage) if (after / "music-untouched").exists() else None

    compare_check(stage, before / "check.txt", unprivileged)
    status, output, errors = stage.reconcile(*lines_of(before / "arguments.txt"),
                                             unprivileged=unprivileged)

    for folder in lines_of(before / "unreadable.txt"):
        os.chmod(local_path(stage, folder), 0o755)
    told = f"\nstandard output:\n{output}\nstandard error:\n{errors}"
    try:
        compare("exit status", lines_of(after / "exit.txt") or ["0"], [str(status)])
        compare_log(stage, after, already)
        compare_texts("standard output", after / "output.txt", output)
        compare_texts("standard error", after / "errors.txt", errors)
        if (after / "files.txt").exists():
            compare_tree(stage, stage.disk, after / "files.txt")
        if (after / "web.txt").exists():
            compare_tree(stage, stage.web, after / "web.txt")
        if (after / "web-unchanged").exists() and contents_of(stage.web) != web_before:
            raise Failed("some file of the web server is not as it was")
        if (after / "csv.txt").exists():
            compare_csv(stage, after / "csv.txt")
        if (after / "removed.txt").exists():
            compare_removed(stage, after / "removed.txt")
        elif (stage.host / "Removed").exists():
            raise Failed("music was removed")
        compare_tags(stage, after / "tags.txt")
        if music_before is not None and all_music(stage) != music_before:
            raise Failed("some file of the library is not as it was")
        compare_contents(stage, after / "contents.txt")
        if untouched:
            content = stage.database.read_bytes() if stage.database.exists() else None
            if content != file_before:
                raise Failed("the database file is not as it was")
            return
        for file in sorted(after.glob("*.txt")):
            if file.stem[0].isupper():
                compare_table(stage, file)
        if unchanged and stage.all_rows() != rows_before:
            raise Failed("some rows are not as they were")
        told_of = lines_of(after / "log.txt") + lines_of(after / "log-has.txt")
        braked = any("Nothing is removed" in line for line in told_of)
        stage.confirm_database(unrepaired=braked)
    except Failed as failure:
        raise Failed(f"{failure}{told}") from None


def main():
    program, folder = sys.argv[1], Path(sys.argv[2]).resolve()
    names = [""] + [f"-{number}" for number in range(2, 10)]
    runs = [name for name in names if (folder / f"after{name}").is_dir()]
    if not runs:
        print(f"{folder} has no folder \"after\"")
        return 1
    with Stage(program) as stage:
        for name in runs:
            try:
                play(stage, folder / f"before{name}", folder / f"after{name}")
            except Failed as failure:
                print(f"{folder.name}, after{name}: {failure}")
                return 1
    print(f"{folder.name}: as expected after {len(runs)} run(s)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
