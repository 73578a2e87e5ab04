#!/usr/bin/env python3
"""window_run_test.py PROGRAM WINDOWS_PROGRAM   runs of the program for Windows with its window on a
desktop under Wine, where a real pointer presses its button. PROGRAM looks at what the runs have made."""

import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
TESTS = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TESTS / "scenarios"), str(TESTS / "app" / "window")]

from desktop import Desktop  # noqa: E402
from stage import ROOT, Failed, Stage  # noqa: E402

import sound_files  # noqa: E402
from processes import TIME_LIMIT, start, told_by  # noqa: E402

ALBUMS, TRACKS = 300, 10
# More than what a run journals before it has found the first albums.
LITTLE = 100_000
# From the window's lower right corner to the middle of its Abort button.
ABORT_FROM_CORNER = (55, 25)


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, there is {actual!r}")


class Library(Stage):
    """A library of which the database knows nothing yet."""

    def __init__(self, program, windows_program):
        super().__init__(program)
        self.windows_program = windows_program
        content = sound_files.silence(0.05)
        for album in range(ALBUMS):
            folder = self.disk / "Music" / f"Artist {album:03}" / "Album"
            folder.mkdir(parents=True)
            for track in range(1, TRACKS + 1):
                (folder / f"{track:02} - Song.mp3").write_bytes(content)

    def start_with_window(self, desktop):
        runner = ROOT / "scripts" / "run-windows-program"
        display = {name: desktop.environment()[name] for name in ("DISPLAY", "XAUTHORITY")}
        return start([runner, "--desktop", self.windows_program, "run", "--host", self.host,
                      "--view", "window"], self.work, environment=display)

    def is_amid_albums(self):
        """Whether the run is at albums and files: it writes what it finds in pieces."""
        return any(size > LITTLE for size in (path.stat().st_size for path in self.journals()))

    def journals(self):
        return (self.host / "Changes").glob("*.jsonl")


def window_amid_albums(library, desktop, process):
    """The window, once the run has come to the albums. Before the first run Wine makes what it needs for a
    desktop, which takes long where much else runs."""
    deadline = time.monotonic() + TIME_LIMIT
    while process.poll() is None and time.monotonic() < deadline:
        window = desktop.window()
        if window and library.is_amid_albums():
            return window
        time.sleep(0.02)
    process.kill()
    raise Failed(f"no window in mid-run: {process.communicate()}")


def a_click_on_abort_ends_the_run_in_order(library, desktop):
    process = library.start_with_window(desktop)
    window = window_amid_albums(library, desktop, process)
    x, y, width, height = desktop.geometry(window)
    expect("a window that fits a small screen", True,
           x >= 0 and y >= 0 and x + width <= 800 and y + height <= 600)
    right, below = ABORT_FROM_CORNER
    desktop.click(x + width - right, y + height - below)
    end = told_by(process)
    expect(f"status ({end.stdout}{end.stderr})", 3, end.returncode)
    expect("window after the end", "", desktop.window())
    added = library.query("SELECT Count(*) AS N FROM Tracks")[0]["N"]
    expect(f"whether some tracks are left to add, with {added} in the database", True,
           added < ALBUMS * TRACKS)
    expect("tracks without a number", [{"N": 0}],
           library.query("SELECT Count(*) AS N FROM Tracks WHERE Track = 0"))
    library.confirm_database(unrepaired=True)


def the_next_run_does_the_rest_and_closes_its_window(library, desktop):
    end = told_by(library.start_with_window(desktop))
    expect(f"status ({end.stdout}{end.stderr})", 0, end.returncode)
    expect("window after the end", "", desktop.window())
    expect("tracks in the end", [{"N": ALBUMS * TRACKS}],
           library.query("SELECT Count(*) AS N FROM Tracks"))
    library.confirm_database()


def main():
    try:
        with Desktop() as desktop, Library(*sys.argv[1:]) as library:
            a_click_on_abort_ends_the_run_in_order(library, desktop)
            the_next_run_does_the_rest_and_closes_its_window(library, desktop)
    except Failed as failure:
        print(failure)
        return 1
    print("the button aborts the run, and the next run does the rest")
    return 0


if __name__ == "__main__":
    sys.exit(main())
