#!/usr/bin/env python3
"""on_a_terminal.py PROGRAM   the whole program on a real terminal (tmux), with a real library.

The library grows, and the run that should bring the new files in is aborted in the middle of that
phase: by the key, by Ctrl-C, by a closed terminal, and in plain lines by a signal. Each time the
database must be whole, the playlists must be what they were, and only some of the new files may have
come in. The run after them brings the rest.
"""

import os
import re
import shlex
import signal
import sys
import time
from pathlib import Path

from stage import Failed, Stage

import song_lists
import sound_files

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "app"))
import terminal as terminals  # noqa: E402

ARTISTS, TRACKS, NEW_ARTISTS, ATTEMPTS = 40, 5, 400, 5
# In front of the others, a file that is named in the log when its folder is looked at.
MARKED_ARTIST, MARK = 5, "no: name.mp3"
FIRST_DAY, DAY = 1500000000, 86400
SLICE = 0.004


def add_artists(stage, word, count):
    for artist in range(count):
        for track in range(TRACKS):
            name = f"Music/{word} {artist:03}/Album/{track} - Song {artist}.{track}.mp3"
            sound_files.write(str(stage.disk / name), sound_files.silence(0.05),
                              FIRST_DAY + track * DAY)


def files(stage):
    return {str(path.relative_to(stage.disk)) for path in (stage.disk / "Music").rglob("*.mp3")}


def known_files(stage):
    rows = stage.query("SELECT SoundFile FROM Tracks")
    return {row["SoundFile"].removeprefix("D:\\").replace("\\", "/") for row in rows}


def on_terminal(stage, **options):
    """The program on a terminal of its own."""
    command = f"{shlex.quote(str(stage.program))} run --host {shlex.quote(str(stage.host))}"
    return terminals.Terminal(f"{command} --view terminal", **options)


def stopped_among_new_files(terminal, word):
    """Lets the program run for moments at a time until the screen shows it among the new files of
    phase 4; it is stopped then. None where it has come to its end before."""
    terminal.wait_for(r"Library Consistency Management|status \d")
    process = terminal.child()
    while not re.search(r"status \d", terminal.screen()):
        try:
            os.kill(process, signal.SIGSTOP)
        except ProcessLookupError:
            break
        screen = terminal.screen()
        if (re.search(r"\(\*\) 4\. Add Folder Tracks", screen)
                and re.search(rf"Artist {word} (00[5-9]|0[1-9]|1[0-4])", screen)):
            return process
        os.kill(process, signal.SIGCONT)
        time.sleep(SLICE)
    return None


def abort_by_keys(stage, word, key):
    with on_terminal(stage) as terminal:
        process = stopped_among_new_files(terminal, word)
        if process is None:
            return False
        terminal.type(key)
        os.kill(process, signal.SIGCONT)
        screen = terminal.confirm_given_back("status 3")
        lines = terminal.lines_left(screen)
    if len(lines) != 3 or not lines[0].startswith("Aborted after") or "added" not in lines[1]:
        raise Failed(f"an aborted run leaves these lines: {lines}")
    return True


def abort_by_closing(stage, word):
    with on_terminal(stage) as terminal:
        process = stopped_among_new_files(terminal, word)
        if process is None:
            return False
        terminal.tmux("kill-server")
        os.kill(process, signal.SIGCONT)
        deadline = time.monotonic() + terminals.PATIENCE
        while Path(f"/proc/{process}").exists():
            if time.monotonic() > deadline:
                raise Failed("a run whose terminal was closed does not end")
            time.sleep(0.01)
    return True


def abort_in_plain_lines(stage, word):
    mark = stage.disk / f"Music/{word} {MARKED_ARTIST:03}/Album/{MARK}"
    mark.write_bytes(b"")
    process = stage.start("run", "--host", str(stage.host), "--view", "plain")
    while not (line := process.stdout.readline()) or MARK.encode() not in line:
        if not line:
            raise Failed("the marked folder is never told")
    process.send_signal(signal.SIGINT)
    rest, errors = process.communicate()
    mark.unlink()
    if process.returncode == 0:
        return False
    last = rest.decode().splitlines()[-1]
    if process.returncode != 3 or not last.startswith("Aborted after") or errors:
        raise Failed(f"plain lines end with {process.returncode}: {last}{errors.decode()}")
    return True


ABORTS = {
    "by the key a": lambda stage, word: abort_by_keys(stage, word, "a"),
    "by Ctrl-C": lambda stage, word: abort_by_keys(stage, word, "C-c"),
    "by a closed terminal": abort_by_closing,
    "by a signal, in plain lines": abort_in_plain_lines,
}


def confirm_aborted(stage, known, lists):
    stage.confirm_database(unrepaired=True)
    now = known_files(stage)
    if not known < now < files(stage):
        raise Failed(f"not in the middle: {len(now)} of {len(files(stage))} files are known,"
                     f" {len(known)} were")
    if any(row["Track"] == 0 for row in stage.query("SELECT Track FROM Tracks")):
        raise Failed("tracks are still without their numbers")
    if song_lists.contents(stage) != lists:
        raise Failed("a playlist is not what it was")


def complete(stage, songs):
    with on_terminal(stage, columns=100, rows=40) as terminal:
        screen = terminal.confirm_given_back("status 0")
        lines = terminal.lines_left(screen)
    if len(lines) != 3 or not re.match(r"Done in (\d:\d\d:\d\d|0\.\d+ s); no errors\.", lines[0]):
        raise Failed(f"a run that comes to its end leaves these lines: {lines}")
    stage.confirm_database()
    if known_files(stage) != files(stage):
        raise Failed("the run after the aborted one did not bring all files")
    if song_lists.songs(stage) != songs:
        raise Failed("the playlists name other songs")


def falls_back_where_there_is_no_screen(stage):
    """A terminal that cannot position the cursor gets plain lines, or words where a screen was asked
    for."""
    command = f"{shlex.quote(str(stage.program))} run --host {shlex.quote(str(stage.host))}"
    with terminals.Terminal(command, kind="dumb", columns=120, rows=40) as terminal:
        terminal.confirm_given_back("status 0", r"Library Consistency Management, Version",
                                    r"\n4\. Add Folder Tracks to Library\n", r"Done in \d[:.]\d")
    with terminals.Terminal(command + " --view terminal", kind="dumb", columns=120) as terminal:
        terminal.confirm_given_back("status 2", "not a terminal that can show a screen; use plain")


def says_why_nothing_ran(stage):
    host_settings = stage.host / "host.ini"
    content = host_settings.read_text()
    host_settings.write_text(content.replace("Quillon=1", "Quillon=0"))
    with on_terminal(stage) as terminal:
        lines = terminal.lines_left(terminal.confirm_given_back("status 2"))
    host_settings.write_text(content)
    expected = "Nothing ran: Quillon must be enabled to perform management activities"
    if len(lines) != 3 or lines[0] != expected:
        raise Failed(f"a run that does not begin leaves these lines: {lines}")


def aborted_among_new_files(stage, number, abort):
    """Aborts a run that brings new files; the files that were known before. On a busy machine a run
    may come to its end first: then there are other new files for another one."""
    for attempt in range(ATTEMPTS):
        known = known_files(stage)
        word = f"New {number}.{attempt}"
        add_artists(stage, word, NEW_ARTISTS)
        if abort(stage, word) and known_files(stage) != files(stage):
            return known
    raise Failed("every run came to its end before it could be aborted")


def story(stage):
    add_artists(stage, "Old", ARTISTS)
    for _ in range(2):
        status, output, errors = stage.reconcile()
        if status != 0:
            raise Failed(f"the first runs end with {status}:\n{output}{errors}")
    song_lists.write(stage, "All.pla", sorted(row["SoundFile"] for row in song_lists.rows(stage)))
    lists, songs = song_lists.contents(stage), song_lists.songs(stage)
    for number, (name, abort) in enumerate(ABORTS.items()):
        known = aborted_among_new_files(stage, number, abort)
        confirm_aborted(stage, known, lists)
        print(f"aborted {name}: {len(known_files(stage)) - len(known)} of"
              f" {len(files(stage)) - len(known)} new files are known")
    complete(stage, songs)
    falls_back_where_there_is_no_screen(stage)
    says_why_nothing_ran(stage)


def main():
    with Stage(sys.argv[1]) as stage:
        try:
            story(stage)
        except (Failed, terminals.Failed) as failure:
            print(failure)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
