#!/usr/bin/env python3
"""count_calls.py PROGRAM LIBRARY   counts the calls of undisturbed runs that cost a disk most, and demands
that there are no more of them than there have to be."""

import json
import shutil
import sys
from collections import Counter
from pathlib import Path

from library import temporary_folder
from points import READING_PARTS, calls_in, place_of
from trial import Workshop, environment

SYNCS = ("fsync", "fdatasync", "syncfs")
LOOKS = ("stat", "stat64", "lstat", "lstat64", "fstatat", "fstatat64", "statx")
RUNS_TO_SETTLE = 3
PEOPLES_LISTS = ("Backwards.pla", "Every second.pla", "Whole.pla", "Discs.pla")
# The lock file, the lists as captured, the copies of database and lists.
MOST_SYNCS = 12


class Counts:
    def __init__(self):
        self.failed = 0

    def expect(self, what, expected, found):
        if found != expected:
            self.failed += 1
            print(f"{what}: expected {expected}, found {found}")


def syncs_by_place(calls):
    return Counter(place_of(call.path) for call in calls if call.name in SYNCS)


def changes_below(calls, place):
    return [str(call) for call in calls if call.kind == "changing" and call.path.startswith(place)]


def songs(calls):
    """What was done to songs of the library."""
    return [call for call in calls
            if call.path.startswith("disk/") and call.path.lower().endswith(".mp3")]


def most_listed(calls):
    """How often that folder was listed that was listed most, of those below the library's root."""
    listings = Counter(call.path for call in calls if call.name == "closedir")
    return max((times for path, times in listings.items()
                if path.startswith("disk/Music/")), default=0)


def looks_at(calls, path):
    return sum(call.path == path and call.name in LOOKS for call in calls)


def a_folder_is_copied_with_one_flush(baseline, counts):
    lists = len(list((baseline.library.host / "M3u").iterdir()))
    found = sum(count for place, count in syncs_by_place(baseline.calls).items()
                if place.startswith("host/TEMPORARY"))
    counts.expect(f"flushes of a copy with {lists} lists", 1 if lists > 1 else None, found)


def converted_lists_are_flushed_together(baseline, counts):
    calls = baseline.calls
    written = sum(call.name == "rename" and "-> host/M3u/" in call.path for call in calls)
    flushes = sum(count for place, count in syncs_by_place(calls).items()
                  if place.startswith("host/M3u"))
    counts.expect("converted lists are many", True, written > 4)
    # The file system and the folder.
    counts.expect(f"flushes for {written} converted lists", 2, flushes)


def a_library_that_has_not_changed_is_not_written_to(workshop, baseline, counts):
    library = baseline.library.copy_to(workshop.folder / "settled")
    for number in range(RUNS_TO_SETTLE):
        library.run(environment(library.folder, number, workshop.preload))
    record = workshop.folder / "record"
    record.touch()
    status, *_ = library.run(
        environment(library.folder, RUNS_TO_SETTLE, workshop.preload, record=record))
    calls = calls_in(record, library.folder)
    counts.expect("status", 0, status)
    counts.expect("writes to the database", [], [
        call for call in changes_below(calls, "host/jukebox.mdb")
        if "jukebox.mdb.playlists" not in call and "_Copy Dated_" not in call])
    counts.expect("changes of lists", [], changes_below(calls, "host/Playlists/"))
    counts.expect("changes of music", [], changes_below(calls, "disk/"))
    syncs = sum(syncs_by_place(calls).values())
    counts.expect(f"{syncs} flushes are few", True, 0 < syncs <= MOST_SYNCS)
    counts.expect("songs opened", [], [str(call) for call in songs(calls)
                                       if call.name.startswith("open")])
    counts.expect("listings of an artist's or album's folder", 1, most_listed(calls))
    journal = max((library.host / "Changes").glob("*.jsonl"))
    kinds = Counter(json.loads(line)["record"] for line in journal.read_text("utf-8").splitlines())
    counts.expect("rows in the journal", 0, kinds["row"] + kinds["saved"])
    counts.expect("ends in the journal", (1, 1, 1), (kinds["run"], kinds["mode"], kinds["end"]))


def without_generated_lists(library):
    for path in library.lists.iterdir():
        if path.name not in PEOPLES_LISTS:
            path.unlink()


def new_lists_are_flushed_together(baseline, counts):
    written = [call.path.rsplit("/", 1)[1] for call in baseline.calls
               if call.name == "rename" and "-> host/Playlists/" in call.path]
    new = sum(name not in PEOPLES_LISTS for name in written)
    flushes = sum(count for place, count in syncs_by_place(baseline.calls).items()
                  if place.startswith("host/Playlists"))
    counts.expect("new lists are many", True, new > 4)
    # Whether it is as it is to be already; for the journal; where it is to be written to; whether that
    # may be replaced.
    counts.expect("looks at the place of a new list", {4}, {
        looks_at(baseline.calls, f"host/Playlists/{name}")
        for name in written if name not in PEOPLES_LISTS})
    # At the start of the run, for the sizes of what is copied, for the copy, for what it captures, for
    # the names and before it deletes.
    listings = sum(call.name == "closedir" and call.path == "host/Playlists"
                   for call in baseline.calls)
    counts.expect("listings of the lists' folder", 7, listings)
    # A repaired list by itself: its file and its folder. Those of genres together, and those of
    # artists: the file system and the folder.
    counts.expect(f"flushes for {len(written)} lists", 2 * (len(written) - new) + 4, flushes)


def lists_that_come_back_cost_no_listing_each(workshop, baseline, counts):
    """An undo of an undo writes one list after the other again."""
    library = baseline.library.copy_to(workshop.folder / "undone")
    library.run(environment(library.folder, 0, workshop.preload))
    record = workshop.folder / "record of undo"
    record.touch()
    for number, asked in ((1, {}), (2, {"record": record})):
        last = max((library.host / "Changes").glob("*.jsonl")).stem
        command = [str(workshop.program), "undo", last, "--host", str(library.host), "--yes"]
        status, *_ = library.told(
            command, environment(library.folder, number, workshop.preload, **asked))
        counts.expect("status of an undo", 0, status)
    calls = calls_in(record, library.folder)
    written = sum(call.name == "rename" and "-> host/Playlists/" in call.path for call in calls)
    counts.expect(f"{written} lists are many", True, written > 4)
    # For the unfinished files of others and for the first of the lists.
    listings = sum(call.name == "closedir" and call.path == "host/Playlists" for call in calls)
    counts.expect("listings of the folder that they come back to", 2, listings)


def new_music_is_read_once(baseline, counts):
    calls = baseline.calls
    opened = Counter(call.path for call in songs(calls) if call.name.startswith("open"))
    read = Counter(call.path for call in songs(calls) if call.name in READING_PARTS)
    counts.expect("new songs are there", True, len(opened) > 0)
    counts.expect("most openings of a new song", 1, max(opened.values(), default=0))
    counts.expect("most readings of a new song", 1, max(read.values(), default=0))
    counts.expect("listings of an artist's or album's folder", 1, most_listed(calls))


def new_songs_are_durable_before_their_rows(calls, counts):
    """Each by its content before it gets its name, and by its name before the database is saved; a folder
    is flushed once for all of them."""
    flushed = [call.path if call.name in SYNCS else None for call in calls]
    save = flushed.index("host/jukebox.mdb.journal-new")
    named = [(number, *call.path.split(" -> ")) for number, call in enumerate(calls)
             if "rename" in call.name and call.path.endswith(".mp3")]
    counts.expect("songs are added", True, len(named) > 3)
    for number, unfinished, name in named:
        folder = name.rsplit("/", 1)[0]
        counts.expect(f"{name} flushed before it has its name", True, unfinished in flushed[:number])
        counts.expect(f"{folder} flushed before the database", True, folder in flushed[number:save])
        counts.expect(f"flushes of {folder}", 1, flushed.count(folder))


def a_song_is_added_with_few_questions(calls, counts):
    """The second one of an album whose tag names everything, and whose folder is visited twice."""
    source, target = "disk/New/Birch/Quiet/Lull.mp3", "disk/Music/Birch/Quiet/Lull.mp3"
    # For its tag, and for the copy.
    counts.expect("openings of a song to be added", 2,
                  sum(call.path == source and call.name.startswith("open") for call in calls))
    # By the listing, and for the journal.
    counts.expect("looks at a song to be added", 2, looks_at(calls, source))
    # Whether it is there; where it is to be copied to; whether that is still free.
    counts.expect("looks at the place of a new song", 3, looks_at(calls, target))


def main():
    program, library = (Path(argument).resolve() for argument in sys.argv[1:])
    folder = temporary_folder()
    counts = Counts()
    try:
        workshop = Workshop(program, library, folder)
        converted = workshop.baseline("pla-to-m3u")
        a_folder_is_copied_with_one_flush(converted, counts)
        converted_lists_are_flushed_together(converted, counts)
        adding = workshop.baseline("add-files").calls
        new_songs_are_durable_before_their_rows(adding, counts)
        a_song_is_added_with_few_questions(adding, counts)
        baseline = workshop.baseline("reconcile")
        a_library_that_has_not_changed_is_not_written_to(workshop, baseline, counts)
        new_music_is_read_once(baseline, counts)
        tagged = workshop.baseline("reconcile-tags", without_generated_lists)
        new_lists_are_flushed_together(tagged, counts)
        lists_that_come_back_cost_no_listing_each(workshop, tagged, counts)
    finally:
        shutil.rmtree(folder)
    print(f"{counts.failed} counts are other than they should be")
    return 1 if counts.failed else 0


if __name__ == "__main__":
    sys.exit(main())
