#!/usr/bin/env python3
"""window_run_test.py PROGRAM MODULE   runs of the program with its window on a desktop."""

import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scenarios"))

from desktop import Desktop, NoWindow, PATIENCE
from stage import Failed, Stage, confirm_whole

import sample_library
import sound_files

PROGRAM, MODULE = sys.argv[1], sys.argv[2]
ALBUMS, TRACKS = 600, 10
TIME_LIMIT = 240
LIST = "Old.pla"
# As high as the window is at least when the phases have begun.
ALL_INDICATORS = 300
# The window draws and takes input at least this often, in seconds, and some more.
BETWEEN_DRAWS = 0.3
# From the window's lower right corner to the middle of its Abort button.
ABORT_FROM_CORNER = (45, 20)


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, got {actual!r}")


def expect_in(what, part, text):
    if part not in text:
        raise Failed(f"{what}: {part!r} is not in {text!r}")


class Library(Stage):
    """A library of so many albums, none of which the database knows."""

    def __init__(self, albums):
        super().__init__(PROGRAM)
        shutil.copy2(MODULE, self.work / Path(MODULE).name)
        self.albums = albums
        self.started = 0
        content = sound_files.silence(0.05)
        for album in range(albums):
            folder = self.disk / "Music" / f"Artist {album:03}" / "Album"
            folder.mkdir(parents=True)
            for track in range(1, TRACKS + 1):
                (folder / f"{track:02} - Song.mp3").write_bytes(content)

    def start_run(self, environment, view="window"):
        self.started = time.time()
        return subprocess.Popen(
            [str(self.program), "run", "--host", str(self.host), "--view", view],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            env=environment)

    def finish(self, process):
        """Exit status, standard output and standard error of a run."""
        try:
            output, errors = process.communicate(timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise Failed("the run does not end") from None
        return process.returncode, output, errors

    def run_with(self, environment, view="window"):
        return self.finish(self.start_run(environment, view))

    def settle(self):
        """Lets a run take everything in, adds a playlist, and changes the library anew."""
        expect("status of the first run", 0, self.reconcile()[0])
        row = self.query("SELECT CDJID FROM Albums WHERE Artist = 'Artist 000'")[0]
        (self.disk / "Lists" / LIST).write_text(f"{row['CDJID']} 3\r\n", newline="")
        for album in range(self.albums):
            folder = self.disk / "Music" / f"Artist {album:03}" / "Another"
            folder.mkdir()
            (folder / "01 - Song.mp3").write_bytes(sound_files.silence(0.05))

    def is_amid_albums(self):
        """Whether the run that was started last has captured the playlists, and so is looking at
        albums and files."""
        return any(path.stat().st_mtime >= self.started for path in self.disk.glob("*.playlists"))

    def confirm_stopped_in_order(self):
        """What an aborted run leaves: a whole database without half albums."""
        self.tool("db", "check", str(self.database))
        confirm_whole(self.database)
        unnumbered = self.query("SELECT Count(*) AS N FROM Tracks WHERE Track = 0")
        expect("tracks without a number", [{"N": 0}], unnumbered)
        for row in self.query("SELECT Albums.CDJID, Albums.Tracks, Count(*) AS N FROM Albums"
                              " INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID"
                              " GROUP BY Albums.CDJID, Albums.Tracks"):
            expect(f"tracks of {row['CDJID']}", row["N"], row["Tracks"])
        self.confirm_playlist()

    def confirm_completed(self):
        """All the rest was left to the next run, and that one does it."""
        expect("status of the run that completes it", 0, self.reconcile()[0])
        counted = self.query("SELECT Count(*) AS N FROM Tracks")
        expect("tracks in the end", [{"N": self.albums * (TRACKS + 1)}], counted)
        self.confirm_playlist()
        self.confirm_database()

    def confirm_playlist(self):
        row = self.query("SELECT CDJID FROM Albums WHERE Artist = 'Artist 000'"
                         " AND Title = 'Album'")[0]
        expect("the playlist", f"{row['CDJID']} 3\r\n".encode(),
               (self.disk / "Lists" / LIST).read_bytes())


def a_run_shows_its_window_and_closes_it_at_its_end():
    with Desktop() as desktop, Library(0) as library:
        _, albums, songs = sample_library.make(library.disk / "Music")
        process = library.start_run(desktop.environment())
        window = desktop.stop_when(process)
        x, y, width, height = desktop.geometry(window)
        expect("a window that fits a small screen", True,
               x >= 0 and y >= 0 and x + width <= 800 and y + height <= 600)
        process.send_signal(signal.SIGCONT)
        status, output, errors = library.finish(process)
        expect("status: " + output + errors, 0, status)
        expect("window after the end", "", desktop.window())
        lines = output.splitlines()
        expect_in("summary", f"Albums: {albums} added. Tracks: {songs} added.", lines[-1])
        expect("phases, which were in the window", False, "1. Capture Playlists" in lines)
        library.confirm_database()


def abort_by(stop, library, desktop):
    """Stops a run in this way; its output."""
    process = library.start_run(desktop.environment())
    window = desktop.stop_when(process, lambda found: library.is_amid_albums()
                               and desktop.geometry(found)[3] >= ALL_INDICATORS)
    stop(desktop, window, process)
    # A run as short as this one must not end before it is time for its next draw.
    time.sleep(BETWEEN_DRAWS)
    process.send_signal(signal.SIGCONT)
    status, output, errors = library.finish(process)
    expect(f"status after {stop.__name__}: " + output + errors, 3, status)
    return output


def click(desktop, window, _process):
    x, y, width, height = desktop.geometry(window)
    right, below = ABORT_FROM_CORNER
    desktop.click(x + width - right, y + height - below)


def terminate(_desktop, _window, process):
    process.send_signal(signal.SIGTERM)


def lose_the_desktop(desktop, _window, _process):
    desktop.end()


def a_click_a_signal_and_the_end_of_the_desktop_stop_a_run_in_order():
    with Desktop() as desktop, Library(ALBUMS) as library:
        library.settle()
        for stop in (click, terminate):
            output = abort_by(stop, library, desktop)
            expect_in("summary", "Aborted after", output.splitlines()[-1])
            library.confirm_stopped_in_order()
        # The desktop may go in the very moment in which the window is drawn. Then the run ends like
        # one that is killed, and the next one puts right what it leaves.
        abort_by(lose_the_desktop, library, desktop)
        library.confirm_completed()


def refused(library, environment, *parts):
    status, output, errors = library.run_with(environment)
    expect("status", 2, status)
    expect("output", "", output)
    expect("lines of the message", 1, errors.count("\n"))
    for part in ("quillon: --view window: ", "use --view terminal or plain", *parts):
        expect_in("message", part, errors)
    expect("anything done", False, library.log.exists())


def without_a_display_nothing_runs_and_the_message_says_why():
    with Desktop() as desktop, Library(1) as library:
        nowhere = desktop.environment()
        del nowhere["DISPLAY"]
        refused(library, nowhere, "neither DISPLAY nor WAYLAND_DISPLAY is set")
        locked = desktop.environment(XAUTHORITY="/dev/null")
        refused(library, locked, "the display cannot be opened", "Authorization required")
        refused(library, desktop.environment(QT_QPA_PLATFORM="nonsense"), "QT_QPA_PLATFORM=nonsense",
                "Could not find the Qt platform plugin")
        (library.work / Path(MODULE).name).unlink()
        refused(library, desktop.environment(), "there is no desktop window in this installation",
                "install the package quillon-window")
        gone = desktop.environment()
        shutil.copy2(MODULE, library.work / Path(MODULE).name)
        desktop.end()
        refused(library, gone, "could not connect to display")


def a_window_without_a_screen_is_one_too():
    with Desktop() as desktop, Library(1) as library:
        environment = desktop.environment(QT_QPA_PLATFORM="offscreen")
        del environment["DISPLAY"]
        status, output, errors = library.run_with(environment)
        expect("status: " + output + errors, 0, status)


def auto_takes_the_window_when_a_launcher_has_started_it():
    with Desktop() as desktop, Library(20) as library:
        launched = desktop.environment(GIO_LAUNCHED_DESKTOP_FILE="shelf.desktop")
        process = library.start_run(launched, view="auto")
        desktop.stop_when(process)
        process.send_signal(signal.SIGCONT)
        status, output, _ = library.finish(process)
        expect("status", 0, status)
        expect("lines", 1, output.count("\n"))
        status, output, errors = library.run_with(desktop.environment(), view="auto")
        expect("status without a launcher", 0, status)
        expect_in("plain lines without a launcher", "4. Add Folder Tracks to Library", output)
        desktop.end()
        status, output, errors = library.run_with(launched, view="auto")
        expect("status without a display", 0, status)
        expect_in("plain lines without a display", "4. Add Folder Tracks to Library", output)
        expect("complaints", "", errors)


def a_start_from_a_menu_that_fails_says_so_on_the_desktop():
    with Desktop() as desktop, Library(1) as library:
        (library.host / "Quillon.ini").unlink()
        process = library.start_run(desktop.environment(GIO_LAUNCHED_DESKTOP_FILE="shelf.desktop"))
        box, deadline = "", time.monotonic() + PATIENCE
        while not box and process.poll() is None and time.monotonic() < deadline:
            box = desktop.tool("search", "--onlyvisible", "--name", "^Quillon Shelfkeeper$")
            time.sleep(0.05)
        if not box:
            raise Failed(f"no message: {library.finish(process)}")
        desktop.tool("windowfocus", box)
        desktop.tool("key", "Return")
        status, _, errors = library.finish(process)
        expect("status", 2, status)
        expect_in("errors", "has no Quillon.ini", errors)
        # Who has a shell reads it there.
        status, _, errors = library.run_with(desktop.environment())
        expect("status without a launcher", 2, status)
        expect_in("errors without a launcher", "has no Quillon.ini", errors)


def main():
    failures = 0
    for story in (a_start_from_a_menu_that_fails_says_so_on_the_desktop,
                  a_run_shows_its_window_and_closes_it_at_its_end,
                  a_click_a_signal_and_the_end_of_the_desktop_stop_a_run_in_order,
                  without_a_display_nothing_runs_and_the_message_says_why,
                  a_window_without_a_screen_is_one_too,
                  auto_takes_the_window_when_a_launcher_has_started_it):
        name = story.__name__.replace("_", " ")
        try:
            story()
            print(f"{name}: yes")
        except (Failed, NoWindow) as failure:
            failures += 1
            print(f"{name}: NO: {failure}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
