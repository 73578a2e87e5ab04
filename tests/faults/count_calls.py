#!/usr/bin/env python3
"""count_calls.py PROGRAM LIBRARY   counts the calls of undisturbed runs that cost a disk most, and demands
that there are no more of them than there have to be."""

import shutil
import sys
from collections import Counter
from pathlib import Path

from library import temporary_folder
from points import place_of
from trial import Workshop

SYNCS = ("fsync", "fdatasync", "syncfs")


def syncs_by_place(calls):
    return Counter(place_of(call.path) for call in calls if call.name in SYNCS)


def main():
    program, library = (Path(argument).resolve() for argument in sys.argv[1:])
    folder = temporary_folder()
    failed = 0
    try:
        baseline = Workshop(program, library, folder).baseline("pla-to-m3u")
        lists = len(list((baseline.library.host / "M3u").iterdir()))
        found = sum(count for place, count in syncs_by_place(baseline.calls).items()
                    if place.startswith("host/TEMPORARY"))
        # One for the copy of the folder, whatever is in it.
        if lists < 2 or found != 1:
            failed += 1
            print(f"the copy of a folder with {lists} lists is flushed {found} times")
    finally:
        shutil.rmtree(folder)
    print(f"{failed} counts are other than they should be")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
