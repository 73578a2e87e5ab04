#!/usr/bin/env python3
"""drives_away.py [--case NAME] [--preload FILE] PROGRAM   takes folders away from a library, as a drive
does that is not mounted, runs twice without them, puts them back and runs again. Nothing may be lost,
and a run that misses something says so by its status."""

import argparse
import shutil
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

import rules
from library import temporary_folder
from looking import Sight, faults_of
from rules import Breach
from stage import Failed
from trial import Workshop, environment, last_line

NIGHTS = 2


def gone(place):
    """The folder or file of this name is not there."""
    return lambda library: (library.folder / place).rename(aside(library))


def unmounted(place, *, holding=None):
    """In its place is an empty folder, as where a file system would be mounted; or one that holds a
    single folder."""
    def take(library):
        (library.folder / place).rename(aside(library))
        (library.folder / place / (holding or "")).mkdir(parents=True)
    return take


def put_back(place):
    """The drive is there again; what was written in its place lies hidden below it."""
    def back(library):
        path = library.folder / place
        if path.exists():
            path.rename(library.folder / "hidden")
        aside(library).rename(path)
    return back


def aside(library):
    return library.folder / "aside"


def elsewhere(place):
    """The place is a link to a file or folder on another disk."""
    def move(library):
        path, other = library.folder / place, library.folder / "other" / Path(place).name
        other.parent.mkdir(parents=True)
        path.rename(other)
        path.symlink_to(Path("../" * (len(Path(place).parts) - 1)) / "other" / other.name)
    return move


@dataclass(frozen=True)
class Case:
    name: str
    mode: str
    away: Callable
    back: Callable
    # Whether a run can know that something is missing.
    tells: bool = True
    arrange: Callable = lambda library: None

    @property
    def lists_stay(self):
        return "lists" not in self.name


def without(name, mode, place, tells=True):
    return Case(f"{name} missing", mode, gone(place), put_back(place), tells)


def emptied(name, mode, place, tells=True, holding=None):
    wording = f"with {holding} only" if holding else "empty"
    return Case(f"{name} {wording}", mode, unmounted(place, holding=holding), put_back(place), tells)


def dangling(name, mode, place, tells=True):
    return Case(f"{name} behind a dangling link", mode, gone("other"), put_back("other"), tells,
                elsewhere(place))


def another_root(root):
    return lambda library: library.set(LibraryRoot=root)


CASES = [
    emptied("music", "reconcile", "disk/Music"),
    emptied("music", "reconcile", "disk/Music", holding="lost+found"),
    without("music", "reconcile", "disk/Music"),
    Case("root one level too high", "reconcile", another_root("D:"), another_root(r"D:\Music")),
    dangling("music", "reconcile", "disk/Music"),
    dangling("artist", "reconcile", "disk/Music/Alder"),
    dangling("album", "reconcile", "disk/Music/Alder/First Light"),
    dangling("song", "reconcile", "disk/Music/Alder/First Light/Alder - Noon.mp3"),
    without("lists", "reconcile", "host/Playlists"),
    emptied("lists", "reconcile", "host/Playlists"),
    dangling("lists, one", "reconcile", "host/Playlists/Backwards.pla"),
    without("covers", "reconcile", "host/Covers"),
    emptied("covers", "reconcile", "host/Covers"),
    dangling("cover", "reconcile", "host/Covers/Alder - First Light.jpg"),
    emptied("music", "reconcile-tags", "disk/Music"),
    dangling("artist", "reconcile-tags", "disk/Music/Fennel Road"),
    dangling("album", "reconcile-tags", "disk/Music/Brook/Stones"),
    dangling("song", "reconcile-tags", "disk/Music/Brook/Stones/Brook - Eddy.mp3"),
    dangling("duplicate", "reconcile-tags", "disk/Music/Marble Foxes/Chisel/Marble Foxes - Dust.mp3"),
    emptied("music", "flat", "disk/Music"),
    dangling("song", "flat", "disk/Music/Alder_Noon.mp3"),
    emptied("music", "several-roots", "disk/Music"),
    emptied("root", "several-roots", "disk/Music/Folk"),
    without("root", "several-roots", "disk/Music/Folk"),
    dangling("root", "several-roots", "disk/Music/Rock"),
    emptied("listed folder", "several-roots", "disk/Attic"),
    without("listed folder", "several-roots", "disk/Attic"),
    without("text file of roots", "several-roots", "disk/Music/more.txt"),
    dangling("text file of roots", "several-roots", "disk/Music/more.txt"),
    without("lists", "playlists-only", "host/Playlists"),
    emptied("lists", "playlists-only", "host/Playlists"),
    dangling("lists, one", "playlists-only", "host/Playlists/Twice.pla"),
    without("source", "add-files", "disk/New"),
    emptied("source", "add-files", "disk/New", tells=False),
    dangling("new folder", "add-files", "disk/New/Birch"),
    dangling("new song", "add-files", "disk/New/x.mp3"),
    emptied("music", "add-files", "disk/Music"),
    without("music", "add-files", "disk/Music"),
    without("covers", "add-files", "host/Covers"),
    emptied("music", "id3-write", "disk/Music"),
    dangling("song", "id3-write", "disk/Music/Alder/First Light/Alder - Dawn.mp3"),
    without("covers", "album-picker", "host/Covers"),
    emptied("covers", "album-picker", "host/Covers", tells=False),
    without("lists", "pla-to-m3u", "host/Playlists"),
    dangling("lists, one", "pla-to-m3u", "host/Playlists/Backwards.pla"),
    without("lists of other players", "pla-to-m3u", "host/M3u"),
]


def played(workshop, case):
    """The breaches of a case."""
    baseline = workshop.baseline(case.mode, case.arrange)
    library = baseline.library.copy_to(workshop.folder / case.mode / "trial")
    case.away(library)
    for night in range(NIGHTS):
        status, output, errors = library.run(environment(library.folder, night, workshop.preload))
        if status < 0:
            yield Breach("crash", f"ended by signal {-status}: {output}{errors}")
        if status == 0 and case.tells:
            yield Breach("status 0", f"in run {night + 1} without it: {last_line(output)}")
        faults = faults_of(library.database, workshop.program)
        if faults:
            yield Breach("database", faults)
    now = Sight(library, baseline.before.tables)
    yield from rules.lost_rows(baseline.before, now, baseline.undisturbed[-1])
    yield from rules.left_marked(baseline.before, now)
    if case.lists_stay:
        yield from rules.lost_lists(baseline.before, now, baseline.undisturbed)
    case.back(library)
    yield from workshop.repaired(baseline, library, first=NIGHTS)


def arguments():
    parser = argparse.ArgumentParser(usage=__doc__, add_help=False)
    parser.add_argument("program", type=Path)
    parser.add_argument("--case")
    parser.add_argument("--preload", type=Path)
    return parser.parse_args()


def main():
    given = arguments()
    base = temporary_folder()
    tried = broken = 0
    try:
        for case in CASES:
            title = f"{case.mode}: {case.name}"
            if given.case not in (None, title):
                continue
            folder = base / str(tried)
            workshop = Workshop(given.program.resolve(), given.preload, folder)
            try:
                breaches = list(played(workshop, case))
            except Failed as failure:
                breaches = [Breach("not played", str(failure))]
            tried += 1
            broken += bool(breaches)
            if breaches:
                print(title)
                for breach in breaches:
                    print(f"    {breach.rule}: {breach.text}")
            shutil.rmtree(folder)
    finally:
        shutil.rmtree(base)
    print(f"{tried} cases of folders and files that were away, {broken} broke a rule")
    return 1 if broken or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
