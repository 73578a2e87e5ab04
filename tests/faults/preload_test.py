#!/usr/bin/env python3
"""preload_test.py LIBRARY   asks the preloaded library for each of its actions, in processes whose few
calls are known, and looks whether they meet what they are to meet."""

import os
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

# Each child works in the folder that is counted; "old" is a file that is there.
READ = "import os; f = os.open('old', os.O_RDONLY); print(os.read(f, 8))"
LIST = "import os; print(sorted(os.listdir('.')))"
WRITE = "import os; f = os.open('old', os.O_WRONLY); os.write(f, b'12345678'); os.write(f, b'rest')"
FLUSHED = ("import os; f = os.open('old', os.O_RDWR); os.write(f, b'flushed'); os.fsync(f);"
           " os.write(f, b' and not'); os.rename('old', 'new')")


class Trials:
    def __init__(self, library, folder):
        self.library = library
        self.folder = folder
        self.failed = 0

    def run(self, code, **fault):
        for path in self.folder.iterdir():
            path.unlink()
        (self.folder / "old").write_bytes(b"contents")
        asked = {f"QUILLON_FAULT_{key.upper()}": str(value) for key, value in fault.items()}
        environment = dict(os.environ, LD_PRELOAD=str(self.library),
                           QUILLON_FAULT_FOLDER=str(self.folder), **asked)
        return subprocess.run([sys.executable, "-I", "-S", "-c", code], cwd=self.folder,
                              env=environment, capture_output=True, text=True, check=False)

    def check(self, what, expected, found):
        if expected != found:
            self.failed += 1
            print(f"{what}: expected {expected!r}, found {found!r}")

    def files(self):
        return {path.name: path.read_bytes() for path in self.folder.iterdir()}

    def number_of(self, code, kind, call):
        """The number of a child's first call of that name."""
        record = self.folder.parent / "record"
        record.unlink(missing_ok=True)
        self.run(code, record=record)
        for line in record.read_text().splitlines():
            fields = line.split("\t")
            if fields[0] == kind and fields[2].startswith(call):
                return int(fields[1])
        raise LookupError(f"no {call} was recorded")

    def disturbed(self, code, kind, call, action, further=0):
        number = self.number_of(code, kind, call) + further
        return self.run(code, calls=kind, at=number, do=action)

    def errors(self):
        for action, word in (("EIO", "Input/output error"), ("EACCES", "Permission denied"),
                             ("ESTALE", "Stale file handle")):
            for call in ("open", "read"):
                told = self.disturbed(READ, "reading", call, action).stderr
                self.check(f"{action} at {call}", True, word in told)
        told = self.disturbed(LIST, "reading", "readdir", "ENOENT").stderr
        self.check("ENOENT in a listing", True, "No such file" in told)
        told = self.disturbed(WRITE, "changing", "write", "ENOSPC").stderr
        self.check("ENOSPC at write", True, "No space left" in told)
        self.check("a failed write", {"old": b"contents"}, self.files())

    def parts(self):
        told = self.disturbed(READ, "reading", "read", "short").stdout
        self.check("a short read", "b'cont'\n", told)
        self.disturbed(WRITE, "changing", "write", "short")
        self.check("a short write", {"old": b"1234rest"}, self.files())

    def ends(self):
        ended = self.disturbed(WRITE, "changing", "write", "kill")
        self.check("killed before a write", (-signal.SIGKILL, {"old": b"contents"}),
                   (ended.returncode, self.files()))
        ended = self.disturbed(WRITE, "changing", "write", "torn")
        self.check("killed within a write", (-signal.SIGKILL, {"old": b"1234ents"}),
                   (ended.returncode, self.files()))
        ended = self.disturbed(FLUSHED, "changing", "rename", "cut")
        self.check("a power cut", (-signal.SIGKILL, {"old": b"flusheds"}),
                   (ended.returncode, self.files()))
        ended = self.disturbed(WRITE, "changing", "write", "abort")
        self.check("aborted", -signal.SIGTERM, ended.returncode)

    def elsewhere(self):
        """Other folders' calls are nobody's business, and at no number nothing happens."""
        code = f"import os; os.stat({str(self.folder.parent)!r}); " + WRITE
        self.check("outside", 1, self.number_of(code, "changing", "write"))
        self.check("undisturbed", (0, {"old": b"12345678rest"}),
                   (self.run(WRITE, calls="changing", at=1000, do="kill").returncode, self.files()))
        told = self.run("import time; print(int(time.time()))", time=1935846000).stdout
        self.check("the time", "1935846000\n", told)


def main():
    library = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as work:
        folder = Path(work, "counted")
        folder.mkdir()
        trials = Trials(library, folder)
        trials.errors()
        trials.parts()
        trials.ends()
        trials.elsewhere()
    print(f"{trials.failed} actions went another way")
    return 1 if trials.failed else 0


if __name__ == "__main__":
    sys.exit(main())
