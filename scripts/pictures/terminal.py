"""A terminal without a screen, and pictures of what it shows."""

import html
import os
import re
import subprocess
import tempfile
import time
from pathlib import Path

PAPER, INK = "#16191d", "#d7dae0"
COLOURS = ("#3b4048", "#e0646c", "#8fc07a", "#d9b56c", "#6cabe8", "#c083dc", "#5fb8c2", "#d7dae0")
PAGE = """<!doctype html><meta charset="utf-8"><style>
body {{ margin: 0; background: {paper}; color: {ink} }}
pre {{ margin: 0; padding: {space}px; font: 15px/{line}px "DejaVu Sans Mono", monospace }}
</style><pre>{text}</pre>"""
SPACE, LINE, COLUMN = 16, 20, 9.04


class Terminal:
    """Runs a command line on a terminal of its own."""

    def __init__(self, columns, rows, command):
        self.columns, self.rows = columns, rows
        self.folder = tempfile.TemporaryDirectory(prefix="quillon-terminal-")
        self.socket = os.path.join(self.folder.name, "socket")
        script = Path(self.folder.name) / "script"
        script.write_text(f"TERM=screen-256color {command}\necho status $?\nsleep 600\n")
        self.tmux("new-session", "-d", "-x", str(columns), "-y", str(rows), f"sh {script}")

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        self.tmux("kill-server")
        self.folder.cleanup()

    def tmux(self, *arguments):
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        environment.pop("TMUX", None)
        return subprocess.run(["tmux", "-S", self.socket, "-f", "/dev/null", "-u", *arguments],
                              check=True, capture_output=True, env=environment).stdout.decode()

    def process(self):
        """The number of the process that runs now."""
        shell = self.tmux("display-message", "-p", "#{pane_pid}").strip()
        return int(subprocess.run(["ps", "-o", "pid=", "--ppid", shell], check=True,
                                  capture_output=True, text=True).stdout.split()[0])

    def text(self):
        return self.tmux("capture-pane", "-p")

    def wait_for_end(self, patience):
        deadline = time.monotonic() + patience
        while not re.search(r"status \d+", self.text()):
            if time.monotonic() > deadline:
                raise RuntimeError("the run never ends")
            time.sleep(0.1)
        if "status 0" not in self.text():
            raise RuntimeError("the run failed:\n" + self.text())

    def save(self, path):
        page = Path(self.folder.name) / "page.html"
        page.write_text(PAGE.format(paper=PAPER, ink=INK, space=SPACE, line=LINE,
                                    text=as_html(self.tmux("capture-pane", "-p", "-e"))))
        width = round(2 * SPACE + self.columns * COLUMN)
        height = 2 * SPACE + self.rows * LINE
        subprocess.run(["chromium", "--headless=new", "--no-sandbox", "--hide-scrollbars",
                        f"--user-data-dir={self.folder.name}/browser",
                        "--force-device-scale-factor=2", f"--window-size={width},{height}",
                        f"--screenshot={path}", page.as_uri()],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def as_html(screen):
    """What a terminal shows, with its colours and bold letters."""
    text, style = "", {}
    for part in re.split(r"(\x1b\[[\d;]*m)", screen):
        codes = re.fullmatch(r"\x1b\[([\d;]*)m", part)
        if codes:
            for code in (int(code or 0) for code in codes[1].split(";")):
                take_in(code, style)
        elif part:
            text += f'<span style="{css(style)}">{html.escape(part)}</span>'
    return text


def take_in(code, style):
    """Changes the style as a terminal does that gets this code."""
    if code == 0:
        style.clear()
    elif code in (1, 2, 7):
        style[code] = True
    elif code in (22, 27):
        for ended in (1, 2) if code == 22 else (7,):
            style.pop(ended, None)
    elif 30 <= code <= 37 or 90 <= code <= 97:
        style["ink"] = COLOURS[code % 10]
    elif code == 39:
        style.pop("ink", None)
    elif 40 <= code <= 47:
        style["paper"] = COLOURS[code % 10]
    elif code == 49:
        style.pop("paper", None)


def css(style):
    ink, paper = style.get("ink", INK), style.get("paper", PAPER)
    if 7 in style:
        ink, paper = paper, ink
    return (f"color:{ink};background:{paper};font-weight:{'bold' if 1 in style else 'normal'};"
            f"opacity:{0.6 if 2 in style else 1}")
