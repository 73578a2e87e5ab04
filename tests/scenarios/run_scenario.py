#!/usr/bin/env python3
"""run_scenario.py PROGRAM FILE   plays one scenario; README.md tells how the file is read."""

import difflib
import json
import os
import re
import sys
from datetime import datetime
from pathlib import Path

import scenario_file
from announcement import Announcement
from stage import NOBODY, SANITIZED, Failed, Stage, confirm_whole, output_of

import sound_files

DEFAULT_TIME = datetime(2020, 1, 1).timestamp()


def local_path(stage, text):
    """A path below the disk; \\xHH stands for one byte of a name."""
    raw = scenario_file.bytes_of(text.strip(), "utf-8")
    return os.fsdecode(os.fsencode(stage.disk) + b"/" + raw)


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
        content = scenario_file.lines_content(what[7:])
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


def set_the_scene(stage, run):
    for line in run.lines("settings"):
        key, value = line.split("=", 1)
        stage.settings[key] = value
    stage.write_settings()
    if "host settings" in run:
        with open(stage.host / "host.ini", "a", encoding="utf-8") as host:
            host.write("\n" + run.sections["host settings"].text())
    for line in run.lines("before/files"):
        make_file(stage, line)
    for line in run.lines("before/rows"):
        stage.execute(line)
    if "before/commands" in run:
        output_of(["bash", "-euo", "pipefail", "-c", run.sections["before/commands"].text()],
                  stage.work, environment={"QUILLON": str(stage.program)})


def shown(value):
    if value is None:
        return "Null"
    return '""' if value == "" else str(value)


def compare(what, expected, actual):
    if expected != actual:
        difference = difflib.unified_diff(expected, actual, "expected", "actual", lineterm="", n=9)
        raise Failed(f"{what} not as expected (\"-\" is missing, \"+\" is new):\n" +
                     "\n".join(difference))


def compare_table(stage, table, lines):
    """The first line names the fields, the others hold a row each, with " | " between values."""
    fields, *expected = [[cell.strip() for cell in line.split(" | ")] for line in lines]
    select = ", ".join(f"[{field}]" for field in fields)
    rows = stage.query(f"SELECT {select} FROM [{table}]")
    actual = [[shown(row[field]) for field in fields] for row in rows]
    compare(f"rows of {table}", sorted(" | ".join(row) for row in expected),
            sorted(" | ".join(row) for row in actual))


def compare_log(run, messages):
    """Exact messages in order, or some of them."""
    if "after/log has" in run:
        compare_texts("log", run.lines("after/log has"), "\n".join(messages))
    else:
        compare("log", run.lines("after/log"), messages)


def compare_tree(stage, folder, expected, what):
    actual = []
    for path in folder.rglob("*"):
        name = stage.neutral(os.fsencode(path.relative_to(folder)).decode("utf-8", "replace"))
        actual.append(name + "/" if path.is_dir() else name)
    compare(what, sorted(expected), sorted(actual))


def contents_of(folder):
    return {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def compare_report(stage, expected):
    """The reconciliation file, byte for byte but for the time that begins each line."""
    written = (stage.host / "Data" / "Quillon" / "QuillonReconcile.csv").read_bytes()
    lines = [re.sub(r"^[0-9/]+( [0-9:]+ [AP]M)?,", "TIME,", line)
             for line in written.decode("cp1252").split("\r\n")]
    compare("reconciliation file", [*expected, ""], lines)


def compare_removed(stage, run):
    """The files that were moved to HOST/Removed instead of being deleted."""
    actual = [stage.neutral(path.relative_to(stage.host).as_posix())
              for path in (stage.host / "Removed").rglob("*") if not path.is_dir()]
    if "after/removed files" in run:
        compare("removed files", sorted(run.lines("after/removed files")), sorted(actual))
    elif (stage.host / "Removed").exists():
        raise Failed("music was removed:\n" + "\n".join(sorted(actual)))


def tag_lines(content):
    """The fields of the tag that ends a file, each with all its bytes."""
    tag = content[-128:]
    if tag[:3] != b"TAG":
        return ["no tag"]
    ends = {"song": (3, 33), "artist": (33, 63), "album": (63, 93), "year": (93, 97),
            "comment and track": (97, 127), "genre": (127, 128)}
    return [f"{name}={scenario_file.written_bytes(tag[start:end])}"
            for name, (start, end) in ends.items()]


def compare_tags(stage, lines):
    """Lines as in "before/files": each file's bytes are those, and so is its time."""
    for line in lines:
        parts = [part.strip() for part in re.split(r" \|(?= |$)", line)] + ["", ""]
        path = local_path(stage, parts[0])
        with open(path, "rb") as stream:
            content = stream.read()
        expected = tagged_sound(parts[2])
        compare(f"tag of {parts[0]}", tag_lines(expected), tag_lines(content))
        if content != expected:
            raise Failed(f"{parts[0]} changed in front of its tag")
        compare(f"time of {parts[0]}", [str(time_of(parts[1]))], [str(os.stat(path).st_mtime)])


def all_music(stage):
    """Content and time of every file."""
    return {path: (path.read_bytes(), path.stat().st_mtime_ns)
            for path in (stage.disk / "Music").rglob("*") if path.is_file()}


def compare_contents(stage, lines):
    """PATH | LINES, as in "before/files"."""
    for line in lines:
        path, text = line.split(" | ", 1)
        expected = scenario_file.lines_content(text)
        actual = Path(local_path(stage, path)).read_bytes()
        compare(path, scenario_file.written_lines(expected), scenario_file.written_lines(actual))
        if expected != actual:
            raise Failed(f"{path} has other bytes: {actual!r}")


def compare_texts(what, lines, actual):
    """Each line must occur, in this order."""
    rest = actual
    for line in lines:
        _, found, rest = rest.partition(line)
        if not found:
            raise Failed(f"{what} lacks \"{line}\" (or has it elsewhere):\n{actual}")


def compare_check(stage, lines, unprivileged):
    """The first line is the exit status of "quillon check", each further one occurs in what it
    tells, in this order; how that is broken into lines does not count."""
    status, output, errors = stage.call("check", "--host", str(stage.host),
                                        unprivileged=unprivileged)
    expected, *sentences = lines
    compare("exit status of check", [expected], [str(status)])
    rest = " ".join((output + errors).split())
    for sentence in sentences:
        _, found, rest = rest.partition(" ".join(sentence.split()))
        if not found:
            raise Failed(f"check lacks \"{sentence}\" (or has it elsewhere):\n{output}{errors}")


def hand_over(stage):
    """Everything on the stage belongs to another account then."""
    for folder, folders, files in os.walk(stage.work):
        for name in [".", *folders, *files]:
            os.chown(os.path.join(folder, name), NOBODY, NOBODY, follow_symlinks=False)


def state(stage, kind):
    """What must not change, by the words of "after/unchanged"."""
    if kind == "rows":
        return None if SANITIZED else stage.all_rows()
    if kind == "database file":
        return stage.database.read_bytes() if stage.database.exists() else None
    return all_music(stage) if kind == "music" else contents_of(stage.web)


def time_to_keep(path):
    """What an undo gives back of a file's time: of lists it is known to the second."""
    kind, time = path.suffix.lower(), path.stat().st_mtime_ns
    if kind in (".pla", ".m3u", ".m3u8"):
        return time // 1_000_000_000
    return time if kind == ".mp3" else 0


def everything(stage):
    """What an undo has to bring back: each file by its content, music and lists with their times;
    each row. Dated copies stay; what only the program's own work needs is no part of it."""
    files = {}
    for folder in (stage.disk, stage.web, stage.host / "Data"):
        for path in folder.rglob("*"):
            name = str(path.relative_to(stage.work))
            if "_Copy Dated_" in name or path == stage.database or path.suffix == ".playlists":
                continue
            if path.is_file():
                files[name] = (path.read_bytes(), time_to_keep(path))
            else:
                files[name] = "folder" if path.is_dir() else "link to nowhere"
    rows = stage.all_rows() if stage.database.exists() else {}
    return files, {table: sorted(map(str, lines)) for table, lines in rows.items()}


def compare_everything(when, expected, actual):
    for wanted, there in zip(expected, actual):
        for name in sorted(wanted.keys() | there.keys()):
            if wanted.get(name) != there.get(name):
                raise Failed(f"{name} is another {when}:\n{wanted.get(name)}\n{there.get(name)}")


def confirm_way_back(stage, before):
    """Takes the run back and takes that back: both times everything is as it was."""
    after = everything(stage)
    for when, expected in (("after an undo", before), ("after an undo of the undo", after)):
        run = json.loads(stage.tool("changes", "--host", str(stage.host), "--list", "--json")
                         .splitlines()[-1])
        status, output, errors = stage.call("undo", run["run"], "--yes", "--host", str(stage.host))
        if status != 0:
            raise Failed(f"undo: status {status}\n{output}{errors}")
        compare_everything(when, expected, everything(stage))
        if stage.database.exists():
            confirm_whole(stage.database)


class Checks:
    """Compares one section after the other; a failure names the line of the file that has it."""

    def __init__(self, run):
        self.run = run

    def section(self, name, comparison, *arguments):
        """Where the run has that section; its lines come last."""
        if name in self.run:
            self.at(name, comparison, *arguments, self.run.lines(name))

    def at(self, name, comparison, *arguments):
        try:
            comparison(*arguments)
        except Failed as failure:
            raise Failed(f"{self.run.place(name)}: {failure}") from None


def play(stage, run, is_last):
    set_the_scene(stage, run)
    already = len(stage.log_messages())
    unprivileged = "account" in run
    if unprivileged and os.geteuid() == 0:
        hand_over(stage)
    closed = [local_path(stage, folder) for folder in run.lines("before/unreadable")]
    for folder in closed:
        os.chmod(folder, 0)
    before = {kind: state(stage, kind) for kind in run.lines("after/unchanged")}

    checks = Checks(run)
    if "check" in run:
        checks.at("check", compare_check, stage, run.lines("check"), unprivileged)
    announcement = Announcement(stage, run.lines("arguments"), unprivileged)
    whole = everything(stage) if is_last and goes_back(stage, run) else None
    status, output, errors = stage.reconcile(*run.lines("arguments"), unprivileged=unprivileged)

    for folder in closed:
        os.chmod(folder, 0o755)
    try:
        checks.at("after/exit status", compare, "exit status",
                  run.lines("after/exit status") or ["0"], [str(status)])
        log = "after/log has" if "after/log has" in run else "after/log"
        checks.at(log, compare_log, run, stage.log_messages()[already:])
        announcement.confirm(stage, status, stage.log_messages()[already:], compare)
        confirm_outcome(stage, run, checks, before, (output, errors))
        if whole is not None and status in (0, 1):
            confirm_way_back(stage, whole)
    except Failed as failure:
        told = f"\nstandard output:\n{output}\nstandard error:\n{errors}"
        raise Failed(f"{failure}{told}") from None


def goes_back(stage, run):
    """Whether it can be seen that the run can be taken back: not where something keeps everybody from
    the files, nor with the sanitizers, under which a process costs much."""
    troubles = ("before/unreadable", "account", "before/commands")
    return not SANITIZED and stage.database.exists() and not any(name in run for name in troubles)


def confirm_outcome(stage, run, checks, before, told):
    """Everything but exit status and log."""
    output, errors = told
    checks.section("after/output", lambda lines: compare_texts("standard output", lines, output))
    checks.section("after/errors", lambda lines: compare_texts("standard error", lines, errors))
    for folder, name in ((stage.disk, "files"), (stage.web, "web")):
        checks.section(f"after/{name}",
                       lambda lines, folder=folder, name=name:
                       compare_tree(stage, folder, lines, name))
    checks.section("after/reconciliation file", compare_report, stage)
    checks.at("after/removed files", compare_removed, stage, run)
    checks.section("after/tags", compare_tags, stage)
    checks.section("after/contents", compare_contents, stage)
    for table in run.tables() if not SANITIZED else []:
        checks.section(f"after/rows of {table}", compare_table, stage, table)
    for kind, content in before.items():
        if state(stage, kind) != content:
            raise Failed(f"{run.place('after/unchanged')}: the {kind} changed")
    if "database file" not in before:
        told_of = run.lines("after/log") + run.lines("after/log has")
        stage.confirm_database(unrepaired=any("Nothing is removed" in line for line in told_of))


def main():
    program, file = sys.argv[1], Path(sys.argv[2])
    try:
        runs = scenario_file.read(file)
        with Stage(program) as stage:
            for run in runs:
                play(stage, run, run is runs[-1])
    except (Failed, scenario_file.Misread) as failure:
        print(failure)
        return 1
    print(f"{file.stem}: as expected after {len(runs)} run(s)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
