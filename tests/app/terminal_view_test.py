#!/usr/bin/env python3
"""terminal_view_test.py PLAYER   looks at the terminal view on a real terminal (tmux)."""

import fcntl
import os
import pty
import re
import signal
import subprocess
import sys
import termios
from concurrent.futures import ThreadPoolExecutor

sys.dont_write_bytecode = True
from terminal import PATIENCE, Failed, Terminal, columns_of  # noqa: E402

RUNNING = r"\(\*\) 4\. Add Folder Tracks to Lib"
SGR_COLOUR = re.compile(r"\x1b\[[\d;]*\b(3[0-7]|38)[\d;]*m")

# In a build with sanitizers these would report the crash themselves, on the screen as it is.
SANITIZERS_KEEP_OUT = "ASAN_OPTIONS=handle_segv=0 UBSAN_OPTIONS=handle_segv=0"


def expect_on(screen, *texts):
    for text in texts:
        if text not in screen:
            raise Failed(f"\"{text}\" is not on the screen:\n{screen}")


def expect_narrow(screen, columns):
    if any(columns_of(line) > columns for line in screen.splitlines()):
        raise Failed(f"wider than {columns} columns:\n{screen}")


def shows_the_whole_form(player):
    with Terminal(f"{player} summary") as terminal:
        screen = terminal.wait_for(RUNNING, r"Current  \d+\. Reconcile Folder")
        expect_on(screen, "Library Consistency Management", "Version 1.2.3", "0:00:0",
                  "Reconcille Library vs Database", "( ) 1. Capture Playlists",
                  "( ) 10. Verify Album Covers", "( ) 1. Add files to Library",
                  "[########................]   37 %", "Errors   ProcessTracks",
                  "am Hafen, Live", "a or Ctrl-C: Abort")
        terminal.type("a")
        terminal.confirm_given_back("status 0", r"Aborted after 0:00:07;", "Path|Dawn")


def leaves_three_lines(player):
    for columns in (40, 80, 200):
        with Terminal(f"{player} summary", columns=columns) as terminal:
            terminal.wait_for(RUNNING)
            terminal.type("a")
            lines = terminal.lines_left(terminal.confirm_given_back("status 0"))
            if len(lines) != 3 or not all(lines):
                raise Failed(f"not three lines on {columns} columns: {lines}")
            expect_on(lines[0], "Aborted", "1 error in host.log")
            expect_on(lines[1], "Albums: 2 added", "Tracks: 12 added")
            if columns > 40:
                expect_on(lines[0], "01 - Dawn.mp3")
                expect_on(lines[1], "4310 unchanged")


def names_what_went_away_where_there_is_room(player):
    for rows, names in ((24, 10), (12, 4), (6, 0)):
        with Terminal(f"{player} losses", columns=80, rows=rows) as terminal:
            terminal.wait_for("Current")
            terminal.type("a")
            left = terminal.confirm_given_back("status 0", r"Aborted after 0:00:07;")
            shown = re.findall(r"^   D:.Music.Alder.Gone(\d+)\.mp3$", left, re.MULTILINE)
            if shown != [str(number + 1) for number in range(names)]:
                raise Failed(f"not {names} names on {rows} rows:\n{left}")
            if names > 0:
                expect_on(left, "12 tracks removed:", f"   and {12 - names} more")
            expect_on(left, "12 removed")


def is_usable_on_40_columns(player):
    with Terminal(f"{player} summary", columns=40, rows=24) as terminal:
        screen = terminal.wait_for(RUNNING, r"37 %\n", "Current", "Errors   ProcessTracks", "Abort")
        expect_on(screen, "…")
        expect_narrow(screen, 40)
        terminal.type("x", "Up", "Down", "S-Up", "C-Up", "F1", "M-a")
        terminal.wait_for(r"Current  \d\d")
        if "Aborting" in terminal.screen():
            raise Failed("a key that is not a aborts")
        terminal.type("A")
        terminal.confirm_given_back("status 0")


def shows_the_log_where_there_is_room(player):
    with Terminal(f"{player} summary", columns=80, rows=40) as terminal:
        screen = terminal.wait_for(RUNNING, "\nLog\n")
        expect_on(screen, "\n  252E671073EC0008 3 Playlist 音楽.pla, Track # updated\n",
                  "\n! ProcessTracks Line 0")
        terminal.type("a")
        terminal.confirm_given_back("status 0")


def looks_intended_on_200_columns(player):
    with Terminal(f"{player} summary", columns=200, rows=24) as terminal:
        screen = terminal.wait_for(RUNNING, "    Log\n")
        expect_on(screen, "Version 1.2.3    Log\n",
                  " ! ProcessTracks Line 0 Path not found: D:\\Music\\Sängerin\\First Light\\01 - "
                  "Dawn.mp3\n",
                  "Artist Sängerin 音楽 und das Orchester der kleinen Bühne am Hafen, Live\n")
        terminal.type("a")
        terminal.confirm_given_back("status 0")


def follows_a_resize(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(RUNNING, r"1\. Add files")
        terminal.resize(40, 10)
        screen = terminal.wait_for(RUNNING, r"Current  \d+", r"Errors   ProcessTracks\n")
        expect_narrow(screen, 40)
        terminal.resize(100, 40)
        terminal.wait_for(RUNNING, r"1\. Add files to Library", "Current", "Errors", "\nLog\n")
        terminal.resize(200, 24)
        terminal.wait_for(RUNNING, "    Log\n", "a or Ctrl-C")
        terminal.resize(9, 3)
        terminal.wait_for("Current")
        terminal.resize(80, 24)
        terminal.wait_for(RUNNING, r"Version 1\.2\.3\n")
        terminal.type("a")
        terminal.confirm_given_back("status 0")


def uses_colours_unless_told_not_to(player):
    for variable, coloured in (("", True), ("NO_COLOR= ", True), ("NO_COLOR=1 ", False)):
        with Terminal(f"{variable}{player} summary", kind="screen-256color") as terminal:
            terminal.wait_for(RUNNING)
            screen = terminal.coloured_screen()
            if (SGR_COLOUR.search(screen) is not None) != coloured:
                raise Failed(f"with '{variable}' there should be colours: {coloured}\n{screen!r}")
            # The running phase stands out either way.
            if not re.search(r"\x1b\[(0;)?1m \(\*\)", screen):
                raise Failed(f"the running phase is not bold:\n{screen!r}")
            terminal.type("a")
            terminal.confirm_given_back("status 0")


def works_on_terminals_of_other_kinds(player):
    for kind in ("vt100", "linux", "xterm-256color", "screen", "tmux-256color"):
        with Terminal(f"{player} summary", kind=kind) as terminal:
            terminal.wait_for(RUNNING, r"Current  \d+\. Reconcile", r"Errors   ProcessTracks\n")
            if kind == "vt100" and SGR_COLOUR.search(terminal.coloured_screen()):
                raise Failed("colours on a terminal without any")
            terminal.type("a")
            # A terminal without another screen keeps the last picture, so "ready" may be gone.
            screen = terminal.wait_for("status 0", r"(?<!-)\bicanon\b", "Aborted after")
            if "-echo " in screen or "-opost" in screen:
                raise Failed(f"{kind} is not given back:\n{screen}")


def has_no_screen_on_a_terminal_that_has_none(player):
    for kind in ("no-such-terminal", "dumb", "''"):
        with Terminal(f"TERM={kind} {player} summary") as terminal:
            terminal.confirm_given_back("status 1", "no screen here")


def ends_by_ctrl_c(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(RUNNING)
        terminal.type("C-c")
        terminal.confirm_given_back("status 0", "Aborted after")


def ends_by_a_signal(player):
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        with Terminal(f"{player} summary") as terminal:
            terminal.wait_for(RUNNING)
            os.kill(terminal.child(), number)
            terminal.confirm_given_back("status 0", "Aborted after")


def says_at_once_that_it_was_heard(player):
    for key in ("a", "C-c"):
        with Terminal(f"{player} stuck") as terminal:
            terminal.wait_for(RUNNING)
            process = terminal.child()
            terminal.type(key)
            terminal.wait_for("Aborting: finishing the current step", r"end at once")
            terminal.type("C-c")
            if key == "a":
                # Another signal, as two of one kind may arrive as one.
                os.kill(process, signal.SIGTERM)
            terminal.confirm_given_back("status 3")


def gives_the_screen_back_on_an_exception(player):
    with Terminal(f"{player} throw") as terminal:
        terminal.wait_for(RUNNING)
        terminal.type("a")
        terminal.confirm_given_back("status 1", "caught: thrown while the screen was up")


def gives_the_screen_back_when_it_crashes(player):
    for number in (signal.SIGQUIT, signal.SIGABRT, signal.SIGSEGV):
        with Terminal(f"ulimit -c 0; {SANITIZERS_KEEP_OUT} {player} stuck") as terminal:
            terminal.wait_for(RUNNING)
            os.kill(terminal.child(), number)
            terminal.confirm_given_back(f"status {128 + number}")


def is_not_stopped_by_ctrl_s(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(RUNNING)
        terminal.type("C-s")
        # From here on the screen has to change twice, whatever it had shown when the key arrived.
        for _ in range(2):
            shown = re.search(r"Current  (\d+)", terminal.wait_for(r"Current  \d+")).group(1)
            terminal.wait_for(rf"Current  (?!{shown}\.)\d+")
        terminal.type("a")
        terminal.confirm_given_back("status 0")


def goes_on_while_its_terminal_takes_nothing(player):
    person, program = pty.openpty()
    fcntl.ioctl(program, termios.TIOCSWINSZ, b"\x18\x00\x50\x00\x00\x00\x00\x00")
    process = subprocess.Popen([player, "summary"], stdin=program, stdout=program,
                               env=dict(os.environ, TERM="xterm"), start_new_session=True,
                               preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
    seen = b""
    while b"Current" not in seen:
        seen += os.read(person, 4096)
    termios.tcflow(program, termios.TCOOFF)
    process.send_signal(signal.SIGTERM)
    try:
        status = process.wait(timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        process.kill()
        raise Failed("the run waits for its terminal") from None
    finally:
        os.close(person)
        os.close(program)
    if status != 0:
        raise Failed(f"exit status {status}")


def comes_back_after_being_suspended(player):
    # A shell of its own does job control; the outer one only tells the status.
    pause = "stty -a | grep icanon; echo stopped; read line; fg"
    with Terminal(f"bash --norc -im -c '{player} summary; {pause}; {pause};"
                  " echo ended $?'") as terminal:
        for _ in range(2):
            terminal.wait_for(RUNNING, r"Current  \d+\. Reconcile", r"Version 1\.2\.3\n")
            terminal.type("C-z")
            terminal.wait_for("ready", "stopped", r"(?<!-)\bicanon\b")
            terminal.type("Enter")
        terminal.wait_for(RUNNING, r"Current  \d+\. Reconcile", r"Version 1\.2\.3\n")
        terminal.type("a")
        terminal.confirm_given_back("ended 0", "Aborted after")


def goes_on_in_the_background_without_its_screen(player):
    with Terminal(f"bash --norc -im -c '{player} summary; bg; echo in background; read line; fg;"
                  " echo ended $?'") as terminal:
        terminal.wait_for(RUNNING)
        terminal.type("C-z")
        terminal.wait_for("ready", "in background")
        if re.search(RUNNING, terminal.screen()):
            raise Failed("a job in the background draws")
        terminal.type("Enter")
        terminal.wait_for(RUNNING, r"Current  \d+\. Reconcile")
        terminal.type("a")
        terminal.confirm_given_back("ended 0", "Aborted after")


def outlives_its_terminal(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(RUNNING)
        process = terminal.child()
        terminal.tmux("kill-server")
        done = subprocess.run(["timeout", "20", "tail", f"--pid={process}", "-f", "/dev/null"],
                              check=False)
        if done.returncode != 0:
            raise Failed("the process neither notices nor ends")


STORIES = (shows_the_whole_form, leaves_three_lines,
           names_what_went_away_where_there_is_room, is_usable_on_40_columns,
           shows_the_log_where_there_is_room, looks_intended_on_200_columns, follows_a_resize,
           uses_colours_unless_told_not_to, works_on_terminals_of_other_kinds,
           has_no_screen_on_a_terminal_that_has_none, ends_by_ctrl_c, ends_by_a_signal,
           says_at_once_that_it_was_heard, gives_the_screen_back_on_an_exception,
           gives_the_screen_back_when_it_crashes, is_not_stopped_by_ctrl_s,
           goes_on_while_its_terminal_takes_nothing,
           comes_back_after_being_suspended, goes_on_in_the_background_without_its_screen,
           outlives_its_terminal)


def told(story, player):
    """What came of a story, in a line; it begins with "NO" where it failed."""
    name = story.__name__.replace("_", " ")
    try:
        story(player)
        return f"yes: {name}"
    except Failed as failure:
        return f"NO: {name}: {failure}"


def main():
    player = sys.argv[1]
    stories = [story for story in STORIES if len(sys.argv) <= 2 or sys.argv[2] in story.__name__]
    # Each has a terminal of its own, and most of its time it waits for what is shown there.
    with ThreadPoolExecutor(4) as side_by_side:
        lines = list(side_by_side.map(lambda story: told(story, player), stories))
    print("\n".join(lines))
    return 1 if any(line.startswith("NO") for line in lines) else 0


if __name__ == "__main__":
    sys.exit(main())
