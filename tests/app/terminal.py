"""A terminal of its own for tests (tmux): what a person types there, and what a person sees."""

import os
import re
import subprocess
import tempfile
import time
import unicodedata
from pathlib import Path

PATIENCE = 30


class Failed(Exception):
    """What was expected did not come true; the text says what."""


class Terminal:
    """A terminal in which one shell command line runs."""

    def __init__(self, command, columns=80, rows=24, kind=None):
        self.folder = tempfile.TemporaryDirectory(prefix="quillon-terminal-")
        self.socket = os.path.join(self.folder.name, "socket")
        script = Path(self.folder.name) / "script"
        choice = "" if kind is None else f"export TERM={kind}\n"
        # "ready" stands on the normal screen before the view opens one of its own. The shell
        # outlives Ctrl-C; what it starts does not inherit that.
        script.write_text(f"trap : INT\n{choice}echo ready\n{command}\necho status $?\nstty -a\n"
                          "sleep 600\n")
        self.tmux("new-session", "-d", "-x", str(columns), "-y", str(rows), f"sh {script}")

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        subprocess.run(["tmux", "-S", self.socket, "kill-server"], check=False, capture_output=True)
        self.folder.cleanup()

    def tmux(self, *arguments):
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        for name in ("TMUX", "NO_COLOR", "LINES", "COLUMNS"):
            environment.pop(name, None)
        done = subprocess.run(["tmux", "-S", self.socket, "-f", "/dev/null", "-u", *arguments],
                              check=True, capture_output=True, env=environment)
        return done.stdout.decode("utf-8")

    def type(self, *keys):
        self.tmux("send-keys", *keys)

    def resize(self, columns, rows):
        self.tmux("resize-window", "-x", str(columns), "-y", str(rows))

    def screen(self):
        return self.tmux("capture-pane", "-p", "-S", "-100")

    def coloured_screen(self):
        """With the escape sequences of colours and the like."""
        return self.tmux("capture-pane", "-p", "-e")

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
            time.sleep(0.03)

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
        for mode in ("echo", "icanon", "isig", "ixon", "opost"):
            if re.search(rf"-{mode}\b", screen):
                raise Failed(f"the terminal is left with -{mode}:\n{screen}")
        if self.tmux("display-message", "-p", "#{alternate_on} #{cursor_flag}").split() != ["0", "1"]:
            raise Failed("the other screen is still on, or the cursor is hidden")
        return screen

    def lines_left(self, screen):
        """What stands on the normal screen between the start of the command and its status."""
        return re.search(r"ready\n(.*?)status \d", screen, re.DOTALL).group(1).splitlines()


def columns_of(line):
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1
               for c in line)
