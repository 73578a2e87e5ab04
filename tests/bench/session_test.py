#!/usr/bin/env python3
"""session_test.py QUILLON_BENCH   lets everything be measured once over a few tracks, where no other
program is installed, and looks whether the page has it."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

MARKS = ("<!-- measured: begin; quillon_bench writes what follows -->\n", "<!-- measured: end -->\n")
PARTS = ("### Aims", "Unchanged, 80 tracks", "New, 80 tracks",
         "Preview, new, 80 tracks", "| Preview, unchanged ", "comparison of tags, 80 tracks",
         "Growth exponent, new, 40 to 80", "Growth exponent, unchanged, 40 to 80",
         "Peak memory, 80 tracks, 12", "Peak memory, 40 tracks, 54", "pages of the database written",
         "playlists written", "snapshot bytes written", "Unchanged: syncs", "AddFiles, 20 files",
         "MPD is not installed", "mdb-sql is not installed", "3. Verify ID3", "10. Verify Album Covers",
         "| Allocations", "| Music files opened ", "Tags compared and equal")


def main():
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        page = Path(folder, "page.md")
        page.write_text("above\n".join(("", MARKS[0])) + "old\n" + MARKS[1] + "below\n")
        inside = Path(folder, "inside")
        inside.mkdir()
        environment = dict(os.environ, PATH="", TMPDIR=str(inside))
        done = subprocess.run([sys.argv[1], "--rounds", "1", "--report", page, "40", "80"],
                              env=environment, capture_output=True, text=True, check=False)
        # Whether the aims are met is another matter.
        if done.returncode not in (0, 1):
            failures.append(f"ends with {done.returncode}: {done.stderr}")
        text = page.read_text()
        if not text.startswith("above\n" + MARKS[0]) or not text.endswith(MARKS[1] + "below\n"):
            failures.append("the page around the tables is another")
        failures += [f"the page lacks {part}" for part in PARTS if part not in text]
        if "old" in text.split(MARKS[0])[1].splitlines():
            failures.append("the old tables are still there")
        if (done.returncode == 1) != ("MISSED" in text):
            failures.append(f"ends with {done.returncode}, which is not what the page says")
        failures += [f"{path.name} is left" for path in inside.iterdir()]
        wrong = subprocess.run([sys.argv[1], "--rounds"], capture_output=True, check=False)
        if wrong.returncode != 2:
            failures.append(f"wrong usage ends with {wrong.returncode}")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
