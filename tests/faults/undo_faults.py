#!/usr/bin/env python3
"""undo_faults.py [options] PROGRAM   takes small runs of several modes back, kills that at single calls
or lets the disk be full from there on, and starts it again: then all is as it was before the run. The undo
of that brings back what was there after the run.

  --all            every point; otherwise a selection that is the same each time
  --count N        so many points of each mode (default 40)
  --mode MODE      this mode only; may be repeated
  --point P        this point only, as a report names it: ACTION:NUMBER
  --keep           with --point: leaves the library as it is at the end, and says where
  --preload FILE   the preloaded library (default: beside the program's build)
"""

import re
import shutil
import sys
from collections import Counter

import modes
import points
from library import temporary_folder
from looking import digest, faults_of, files_of, shown, songs_at, tables_of
from options import Options
from stage import Failed
from waiting import not_waited_for
from trial import environment

MODES = ("reconcile", "reconcile-tags", "add-files", "id3-write", "id3-write-both", "album-picker",
         "playlists-only", "modern")
ACTIONS = ("kill", "torn", "cut", "full")
STARTED_AGAIN = 2
REFUSED = 2
UNDO_OF_UNDO = re.compile(r"'quillon undo ([-\d_]+)' takes this undo back")
SEED = "the same each time"


def time_of(path):
    """The time that an undo gives back: of music it is exact, of lists to the second."""
    kind, time = path.suffix.lower(), path.stat().st_mtime_ns
    if kind in (".pla", ".m3u", ".m3u8"):
        return time // 1_000_000_000
    return time if kind == ".mp3" else 0


class State:
    """Rows, files with their content, and times of music and lists."""

    def __init__(self, library):
        self.rows = tables_of(library.database)
        self.files = {}
        for name, path in files_of(library).items():
            # What a copy was stays in Removed: it is no part of the library.
            if not name.startswith("host/Removed/"):
                self.files[name] = (digest(path.read_bytes()), time_of(path))
        self.songs = Counter(songs_at(library).values())

    def differences(self, other):
        """What `other` has otherwise, in words."""
        told = [f"file {name}" for name in sorted(self.files.keys() | other.files.keys())
                if self.files.get(name) != other.files.get(name)]
        for table, rows in self.rows.items():
            there = other.rows[table]
            told += [f"{table} {key}: {rows.get(key)} -> {there.get(key)}"
                     for key in sorted(rows.keys() | there.keys())
                     if rows.get(key) != there.get(key)]
        return "; ".join(told[:4]) + (f"; and {len(told) - 4} more" if len(told) > 4 else "")


class Workshop:
    """A mode's library after a run, with what it was before."""

    def __init__(self, given, folder, mode):
        self.given = given
        self.folder = folder / mode
        library = modes.prepare(mode, self.folder / "after", given.program)
        for own in ("Changes", "Reports"):
            shutil.rmtree(library.host / own, ignore_errors=True)
        self.before = State(library)
        status, output, errors = library.run(self.environment(library, 0))
        if status != 0:
            raise Failed(f"{mode}: the run ends with {status}:\n{output}{errors}")
        self.library = library
        self.after = State(library)
        if not self.before.differences(self.after):
            raise Failed(f"{mode}: the run changes nothing")
        self.calls = self.undisturbed()

    def environment(self, library, number, **fault):
        return environment(library.folder, number, self.given.preload, **fault)

    def undo(self, library, number, stamp="last", **fault):
        command = [str(self.given.program), "undo", stamp, "--host", str(library.host), "--yes"]
        return library.told(command, self.environment(library, number, **fault))

    def undisturbed(self):
        """The calls of an undo that nothing disturbs, which brings everything back."""
        library = self.library.copy_to(self.folder / "trial")
        record = self.folder / "record"
        record.touch()
        status, output, errors = self.undo(library, 1, record=record)
        left = self.before.differences(State(library))
        if status != 0 or left:
            raise Failed(f"an undo that nothing disturbs: {status}: {left}\n{output}{errors}")
        calls = points.calls_in(record, library.folder)
        if (call := not_waited_for(calls)) is not None:
            raise Failed(f"an undo has ended before this is on the disk: {call}")
        shutil.rmtree(library.folder)
        return calls

    def points(self):
        every = [points.Point(call.kind, action, call.number, call.name, call.path)
                 for call in self.calls if call.kind == "changing" for action in ACTIONS
                 if action != "torn" or call.name in points.WRITING_PARTS]
        if self.given.point:
            return [point for point in every if f"{point.action}:{point.number}" == self.given.point]
        return every if self.given.all else points.chosen(every, self.given.count, SEED)

    def trial(self, point):
        """What is wrong after a disturbed undo, and after it was started again."""
        library = self.library.copy_to(self.folder / "trial")
        record = self.folder / "record"
        record.unlink(missing_ok=True)
        status, output, errors = self.undo(library, 1, record=record, calls="changing",
                                           at=point.number, do=point.action)
        if not record.exists():
            yield "the point was not reached"
        yield from self.aftermath(library, point, status, output + errors)
        told = yield from self.started_again(library, point, status)
        yield from self.taken_back(library, told or output)
        if self.given.keep:
            print(f"the library is left in {library.folder}")
        else:
            shutil.rmtree(library.folder)

    def aftermath(self, library, point, status, told):
        """What holds as soon as the undo was disturbed."""
        songs = Counter(songs_at(library).values())
        lost = {song: count for song, count in (self.before.songs & self.after.songs).items()
                if songs[song] < count}
        if lost or songs["damaged"]:
            yield f"songs lost: {lost}, damaged: {songs['damaged']}"
        if point.kills:
            if status != -9:
                yield f"it was not killed: status {status}"
            return
        if status not in (0, 1, REFUSED):
            yield f"status {status}: {shown(told)}"
        left = self.before.differences(State(library))
        if status == 0 and left:
            yield f"the status is 0, and yet: {left}"
        if status != 0 and "space" not in told.lower() and "disk full" not in told.lower():
            yield f"status {status}, but nothing is said of a full disk: {shown(told)}"
        if status == REFUSED and left != self.before.differences(self.after) \
                and "Started again, it goes on" not in told:
            yield f"half of it is done, and nothing is said of that: {shown(told)}"
        if unfinished := [path for path in library.folder.rglob(".quillon-*")]:
            yield f"half a file is left: {unfinished}"

    def started_again(self, library, point, status):
        """What the last of the undos told that were needed after one of that status: "" where none was."""
        output = errors = ""
        # Every other one is killed once more.
        fault = ({"calls": "changing", "at": point.number // 2, "do": "kill"}
                 if point.kills and point.number % 2 == 0 else {})
        for number in range(STARTED_AGAIN):
            if status == 0 and not self.before.differences(State(library)):
                break
            status, output, errors = self.undo(library, 2 + number, **fault)
            fault = {}
        left = self.before.differences(State(library))
        if left:
            yield f"started again it does not go on: {left}: status {status}: {output}{errors}"
        if faults := faults_of(library.database, self.given.program):
            yield faults
        return output

    def taken_back(self, library, told):
        """The command that the undo told takes back all of it, in however many parts it was done."""
        if (command := UNDO_OF_UNDO.search(told)) is not None:
            stamp = command[1]
        elif not told:
            # Killed when all was done, and before it could tell.
            stamp = max(journal.stem for journal in (library.host / "Changes").glob("*.jsonl"))
        else:
            yield f"no command is told that takes the undo back: {shown(told)}"
            return
        status, output, errors = self.undo(library, 2 + STARTED_AGAIN, stamp=stamp)
        if status != 0 or (left := self.after.differences(State(library))):
            yield f"taken back, it is not as after the run: {status}: {left}\n{output}{errors}"


def main():
    given = Options(__doc__, list(modes.MODES), count=40).given()
    folder = temporary_folder()
    tried = broken = 0
    try:
        for mode in given.mode or MODES:
            workshop = Workshop(given, folder, mode)
            for point in workshop.points():
                tried += 1
                wrong = list(workshop.trial(point))
                broken += bool(wrong)
                for what in wrong:
                    print(f"{mode} {point.action}:{point.number}: {point.call} on {point.path}:\n"
                          f"    {what}", flush=True)
    except Failed as failure:
        print(failure)
        broken += 1
    finally:
        if not given.keep:
            shutil.rmtree(folder)
    print(f"{tried} points tried, at {broken} of them something was wrong")
    return 1 if broken or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
