"""A desktop of a test's own: an X server without a screen, on a display number that is free, which
only who has its key may use."""

import os
import secrets
import signal
import struct
import subprocess
import tempfile
import time
from pathlib import Path

PATIENCE = 60
TITLE = "Library Consistency Management"
FAMILY_WILD = 0xFFFF


class NoWindow(Exception):
    """A window that was to be there never came."""


class Desktop:
    def __init__(self, size="800x600"):
        self.folder = tempfile.TemporaryDirectory(prefix="quillon-desktop-")
        self.key = Path(self.folder.name) / "key"
        name, secret = b"MIT-MAGIC-COOKIE-1", secrets.token_bytes(16)
        fields = [b"", b"", name, secret]
        self.key.write_bytes(struct.pack(">H", FAMILY_WILD) + b"".join(
            struct.pack(">H", len(field)) + field for field in fields))
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-auth", self.key, "-screen", "0", f"{size}x24",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=[writer], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as number:
            self.display = ":" + number.readline().strip()

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        self.end()
        self.folder.cleanup()

    def end(self):
        """The server goes away with all that it shows."""
        self.server.terminate()
        self.server.wait()

    def environment(self, **more):
        """What a program on this desktop finds in its environment, and nothing of another one."""
        kept = {name: value for name, value in os.environ.items()
                if not name.startswith(("QT_", "XDG_", "WAYLAND", "GIO_", "DESKTOP_"))}
        own = {"DISPLAY": self.display, "XAUTHORITY": str(self.key),
               "XDG_RUNTIME_DIR": self.folder.name, "LC_ALL": "C.UTF-8"}
        return kept | own | more

    def tool(self, *arguments):
        done = subprocess.run(["xdotool", *arguments], capture_output=True, text=True,
                              env=self.environment(), check=False)
        return done.stdout.strip()

    def window(self):
        """The number of the program's window; "" while there is none that can be seen."""
        return self.tool("search", "--onlyvisible", "--name", f"^{TITLE}$")

    def stop_when(self, process, condition=lambda window: True):
        """Lets a program go on step by step until its window is there and the condition holds, and
        leaves it standing still, at a place that does not depend on how fast this machine is. What
        happens to the window then waits for the program to go on. Returns the window."""
        deadline = time.monotonic() + PATIENCE
        while True:
            process.send_signal(signal.SIGSTOP)
            found = self.window()
            if found and condition(found):
                return found
            process.send_signal(signal.SIGCONT)
            if process.poll() is not None or time.monotonic() > deadline:
                raise NoWindow(f"no window; the program's state is {process.poll()}, it says "
                               + repr(process.stderr.read()))
            time.sleep(0.005)

    def geometry(self, window):
        """Place and size of a window: x, y, width, height."""
        lines = self.tool("getwindowgeometry", "--shell", window).splitlines()
        values = dict(line.split("=") for line in lines if "=" in line)
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def click(self, x, y):
        self.tool("mousemove", str(x), str(y), "click", "1")
