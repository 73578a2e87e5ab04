#!/usr/bin/env python3
"""killed.py PROGRAM   kills album picker runs at many moments: a whole set of pages is there after each
of them, and the next run that comes to its end leaves nothing else."""

import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scenarios"))

from page import FOOT
from stage import Failed, Stage

ALBUMS = 40
KILLS = 25


def set_the_scene(stage):
    for number in range(1, ALBUMS + 1):
        stage.execute("INSERT INTO Albums (CDJID, Artist, Title, Tracks) VALUES "
                      f"('{number:04}', 'Artist', 'Album {number}', 1)")
        stage.execute(f"INSERT INTO Tracks (CDJID, Track, Title) VALUES ('{number:04}', 1, 'Song')")
    stage.settings.update(AlbumPicker="1", PickerMinimum="1", ImagesWide="1", ImagesHigh="1")
    stage.write_settings()


def is_whole(folder):
    """Whether a folder holds one whole set and nothing else."""
    wanted = {"AlbumPicker.css"} | {f"AlbumPicker{number}.asp" for number in range(ALBUMS + 1)}
    if not folder.is_dir() or {file.name for file in folder.iterdir()} != wanted:
        return False
    return all(file.read_bytes().endswith(FOOT.encode()) for file in folder.glob("*.asp"))


def play(stage):
    base = stage.web / "Quillon"
    pages, old = base / "AlbumPicker", base / "AlbumPicker.old"
    start = time.monotonic()
    status, output, errors = stage.reconcile()
    duration = time.monotonic() - start
    if status != 0 or not is_whole(pages):
        raise Failed(f"the first run: exit status {status}\n{output}{errors}")
    killed = 0
    for number in range(KILLS):
        process = stage.start("run", "--host", str(stage.host), "--view", "plain")
        time.sleep(duration * number / KILLS)
        process.kill()
        process.communicate()
        killed += process.returncode != 0
        if not is_whole(pages) and (pages.exists() or not is_whole(old)):
            raise Failed(f"kill number {number} left no whole set")
    if killed == 0:
        raise Failed("no run was killed")
    status, output, errors = stage.reconcile()
    if status != 0 or stage.log_messages():
        raise Failed(f"the last run: exit status {status}\n{output}{errors}")
    left = sorted(path.name for path in base.iterdir())
    if left != ["AlbumPicker", "albumcovers"] or not is_whole(pages):
        raise Failed(f"the last run left {left}")
    return killed


def main():
    with Stage(sys.argv[1]) as stage:
        try:
            set_the_scene(stage)
            killed = play(stage)
        except Failed as failure:
            print(failure)
            return 1
    print(f"{killed} runs killed; a whole set of pages was there after each")
    return 0


if __name__ == "__main__":
    sys.exit(main())
