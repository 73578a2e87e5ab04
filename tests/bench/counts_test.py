#!/usr/bin/env python3
"""counts_test.py LIBRARY   lets processes whose calls are known be counted."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

DATABASE = """import os
f = os.open('x.mdb', os.O_RDWR | os.O_CREAT)
os.pwrite(f, bytes(4096), 4096)
os.pwrite(f, bytes(8192), 4096)
os.fsync(f)
os.fdatasync(f)
"""
PLAYLIST = """import os
for name in ('a.pla', 'b.m3u'):
    f = os.open('.quillon-1.tmp', os.O_WRONLY | os.O_CREAT)
    os.write(f, b'12345')
    os.rename('.quillon-1.tmp', name)
"""
BACKUP = """import os
os.mkdir('.quillon-2.tmp')
f = os.open('.quillon-2.tmp/c.pla', os.O_WRONLY | os.O_CREAT)
os.write(f, b'1234567')
g = os.open('.quillon-2.tmp/d.pla', os.O_WRONLY | os.O_CREAT)
os.copy_file_range(os.open('.quillon-2.tmp/c.pla', os.O_RDONLY), g, 4)
os.rename('.quillon-2.tmp', 'Playlists_Copy Dated_1_')
"""
BESIDE = """import os
for name, size in (('x.mdb.playlists', 3), ('x.mdb.journal', 4), ('h.log', 5), ('other', 6)):
    f = os.open(name, os.O_WRONLY | os.O_CREAT)
    os.writev(f, [bytes(size)])
"""
NAMELESS = """import os
f = os.open('x.mdb', os.O_RDWR | os.O_CREAT)
os.unlink('x.mdb')
os.write(f, b'12345678')
"""
MUSIC = """import os
os.mkdir('folder')
for i in range(3):
    os.close(os.open('song.mp3', os.O_RDWR | os.O_CREAT))
os.listdir('folder')
os.close(os.open('folder', os.O_RDONLY | os.O_DIRECTORY))
"""
ALLOCATIONS = "import ctypes\nfor i in range({}): ctypes.create_string_buffer(1_000_000)"


class Trials:
    def __init__(self, library):
        self.library = library
        self.failed = 0

    def counts(self, code):
        with tempfile.TemporaryDirectory() as folder:
            inside, told = Path(folder, "inside"), Path(folder, "told")
            inside.mkdir()
            environment = dict(os.environ, LD_PRELOAD=self.library, QUILLON_COUNTS=str(told))
            subprocess.run([sys.executable, "-I", "-S", "-c", code], cwd=inside, env=environment,
                           check=True)
            return {name: int(count) for name, count in
                    (line.split() for line in told.read_text().splitlines())}

    def expect(self, code, **expected):
        before, found = self.counts("import os"), self.counts(code)
        for name, count in expected.items():
            name = name.replace("__", ".").replace("_", "-")
            more = found[name] - before[name]
            if more != count:
                self.failed += 1
                print(f"{name}: expected {count}, found {more}, of\n{code}")


def main():
    trials = Trials(sys.argv[1])
    trials.expect(DATABASE, database__written_bytes=12288, database__written_pages=2,
                  database__written_files=1, syncs=2)
    trials.expect(PLAYLIST, playlist__written_bytes=10, playlist__written_files=2,
                  other__written_bytes=0)
    trials.expect(BACKUP, backup__written_bytes=11, backup__written_files=2,
                  playlist__written_files=0, other__written_files=0)
    trials.expect(BESIDE, snapshot__written_bytes=3, journal__written_bytes=4,
                  log__written_bytes=5, other__written_bytes=6, database__written_bytes=0)
    trials.expect(NAMELESS, temporary__written_bytes=8, database__written_bytes=0)
    trials.expect(MUSIC, music__opened=3, opened_folders=2)
    few, many = (trials.counts(ALLOCATIONS.format(count)) for count in (10, 20))
    if many["allocated-bytes"] - few["allocated-bytes"] < 10_000_000:
        trials.failed += 1
        print("ten megabytes more are not counted as allocated")
    print(f"{trials.failed} counts are wrong")
    return 1 if trials.failed else 0


if __name__ == "__main__":
    sys.exit(main())
