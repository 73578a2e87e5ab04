#!/usr/bin/env python3
"""two_systems.py PROGRAM WINDOWS_PROGRAM SCENARIO...   plays each scenario's runs twice, by this system's
program and by the one for Windows. Both must leave the same rows, playlists, tags and pages, and both
databases must be whole."""

import re
import sys
from pathlib import Path

from run_scenario import set_the_scene
from stage import Failed, Stage, confirm_whole

import scenario_file

# The time of a run is in them.
TIMES = {"DateAdded", "UpdateTime", "DownLoadTime"}


def played(program, windows_program, runs):
    """What the runs leave: each file's content and each row, and how the runs ended."""
    with Stage(program) as stage:
        stage.windows_program = windows_program
        ends = []
        for run in runs:
            set_the_scene(stage, run)
            ends.append(stage.reconcile(*run.lines("arguments")).returncode)
        confirm_whole(stage.database)
        stage.confirm_database()
        left = {"ends of the runs": ends, "log": stage.log_messages()}
        for folder in (stage.disk, stage.web):
            for path in folder.rglob("*"):
                name = stage.neutral(str(path.relative_to(stage.work)))
                if path.is_file() and path.suffix != ".mdb" and "_Copy Dated_" not in name:
                    left[name] = content_of(stage, path)
        for table, rows in stage.all_rows().items():
            left[table] = sorted(str({field: value for field, value in row.items()
                                      if field not in TIMES}) for row in rows)
        return left


def content_of(stage, path):
    """With what differs from run to run made alike."""
    content = path.read_bytes().decode("latin-1")
    if path.suffix == ".sounds":
        # Known by when their rows were added.
        content = re.sub(r"^(Song \d+ \d+) \d+", r"\1 ADDED", content, flags=re.MULTILINE)
    return re.sub(r"[0-9/]+ [0-9:]+ [AP]M", "TIME", stage.neutral(content))


def main():
    program, windows_program, *files = sys.argv[1:]
    try:
        for file in map(Path, files):
            runs = scenario_file.read(file)
            here = played(program, None, runs)
            there = played(program, windows_program, runs)
            for name in sorted(here.keys() | there.keys()):
                if here.get(name) != there.get(name):
                    raise Failed(f"{file.stem}: {name} is another on Windows:\n"
                                 f"{here.get(name)!r}\n{there.get(name)!r}")
            print(f"{file.stem}: {len(here)} things are the same")
    except Failed as failure:
        print(failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
