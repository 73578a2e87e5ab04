#!/usr/bin/env python3
"""terminal_view_test.py PLAYER   looks at the terminal view on a real terminal (tmux)."""

import os
import re
import subprocess
import sys
import tempfile
import time
import unicodedata
from pathlib import Path

PATIENCE = 20


class Failed(Exception):
    """What was expected did not come true; the text says what."""


class Terminal:
    """A terminal of its own, in which one shell command line runs."""

    def __init__(self, command, columns=80, rows=24):
        self.folder = tempfile.TemporaryDirectory(prefix="quillon-terminal-")
        self.socket = os.path.join(self.folder.name, "socket")
        script = Path(self.folder.name) / "script"
        # "ready" stands on the normal screen before the view opens one of its own. The shell
        # outlives Ctrl-C; what it starts does not inherit that.
        script.write_text(f"trap : INT\necho ready\n{command}\necho status $?\nstty -a\nsleep 600\n")
        self.tmux("new-session", "-d", "-x", str(columns), "-y", str(rows), f"sh {script}")

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        self.tmux("kill-server")
        self.folder.cleanup()

    def tmux(self, *arguments):
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        environment.pop("TMUX", None)
        done = subprocess.run(["tmux", "-S", self.socket, "-f", "/dev/null", "-u", *arguments],
                              check=True, capture_output=True, env=environment)
        return done.stdout.decode("utf-8")

    def screen(self):
        return self.tmux("capture-pane", "-p", "-S", "-100")

    def wait_for(self, *patterns):
        """The screen as soon as it shows all of these."""
        deadline = time.monotonic() + PATIENCE
        while True:
            screen = self.screen()
            missing = [pattern for pattern in patterns if not re.search(pattern, screen)]
            if not missing:
                return screen
            if time.monotonic() > deadline:
                raise Failed(f"the screen never shows {missing}:\n{screen}")
            time.sleep(0.05)

    def child(self):
        """The process id of what the shell runs now."""
        shell = self.tmux("display-message", "-p", "#{pane_pid}").strip()
        done = subprocess.run(["ps", "-o", "pid=", "--ppid", shell], check=True,
                              capture_output=True, text=True)
        return int(done.stdout.split()[0])

    def confirm_given_back(self, *patterns):
        """After the end: the normal screen, with its old text, in its usual mode."""
        screen = self.wait_for(r"status \d+", r"(?<!-)\bicanon\b", *patterns)
        if "ready" not in screen:
            raise Failed(f"this is not the normal screen:\n{screen}")
        for mode in ("echo", "icanon", "isig"):
            if re.search(rf"-{mode}\b", screen):
                raise Failed(f"the terminal is left with -{mode}:\n{screen}")
        if self.tmux("display-message", "-p", "#{alternate_on} #{cursor_flag}").split() != ["0", "1"]:
            raise Failed("the other screen is still on, or the cursor is hidden")
        return screen


def columns_of(line):
    return sum(2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in line)


def shows_the_whole_form(player):
    with Terminal(f"{player} summary") as terminal:
        screen = terminal.wait_for(r"\(\*\) 4\. Add Folder Tracks to Library",
                                   r"Current  \d+\. Sängerin 音楽")
        for text in ("Library Consistency Management", "Version 1.2.3", "0:00:0",
                     "Reconcille Library vs Database", "( ) 1. Capture Playlists",
                     "( ) 10. Verify Album Covers", "( ) 1. Add files to Library",
                     "Errors   ProcessTracks", "Abort"):
            if text not in screen:
                raise Failed(f"\"{text}\" is not on the screen:\n{screen}")
        terminal.tmux("send-keys", "a")
        terminal.confirm_given_back("status 0", r"Aborted after 0:00:07\.", "Path not found")


def follows_a_resize(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(r"\(\*\) 4\.", r"1\. Add files")
        terminal.tmux("resize-window", "-x", "40", "-y", "10")
        screen = terminal.wait_for(r"\(\*\) 4\.", r"Current  \d+", "Errors   ProcessTracks")
        if any(columns_of(line) > 40 for line in screen.splitlines()):
            raise Failed(f"wider than 40 columns:\n{screen}")
        terminal.tmux("resize-window", "-x", "100", "-y", "30")
        terminal.wait_for(r"\(\*\) 4\.", r"1\. Add files to Library", "Current", "Errors")
        terminal.tmux("send-keys", "a")
        terminal.confirm_given_back("status 0")


def starts_on_40_columns(player):
    with Terminal(f"{player} summary", columns=40, rows=24) as terminal:
        terminal.wait_for(r"\(\*\) 4\. Add Folder Tracks to Library", "Current", "Errors")
        terminal.tmux("send-keys", "x")
        terminal.tmux("send-keys", "A")
        terminal.confirm_given_back("status 0")


def ends_by_ctrl_c(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(r"\(\*\) 4\.")
        terminal.tmux("send-keys", "C-c")
        terminal.confirm_given_back("status 0", "Aborted after")


def ends_by_sigterm(player):
    with Terminal(f"{player} summary") as terminal:
        terminal.wait_for(r"\(\*\) 4\.")
        os.kill(terminal.child(), 15)
        terminal.confirm_given_back("status 0", "Aborted after")


def gives_the_screen_back_on_an_exception(player):
    with Terminal(f"{player} throw") as terminal:
        terminal.wait_for(r"\(\*\) 4\.")
        terminal.tmux("send-keys", "a")
        terminal.confirm_given_back("status 1", "caught: thrown while the screen was up")


def gives_the_screen_back_on_a_second_signal(player):
    with Terminal(f"{player} stuck") as terminal:
        terminal.wait_for(r"\(\*\) 4\.")
        process = terminal.child()
        os.kill(process, 15)
        terminal.wait_for("Aborting")
        os.kill(process, 15)
        terminal.confirm_given_back("status 3")


def has_no_screen_on_an_unknown_terminal(player):
    with Terminal(f"TERM=no-such-terminal {player} summary") as terminal:
        terminal.confirm_given_back("status 1", "no screen here")


def main():
    player = sys.argv[1]
    failures = 0
    for story in (shows_the_whole_form, follows_a_resize, starts_on_40_columns, ends_by_ctrl_c,
                  ends_by_sigterm, gives_the_screen_back_on_an_exception,
                  gives_the_screen_back_on_a_second_signal,
                  has_no_screen_on_an_unknown_terminal):
        name = story.__name__.replace("_", " ")
        try:
            story(player)
            print(f"{name}: yes")
        except Failed as failure:
            failures += 1
            print(f"{name}: NO: {failure}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
