"""The options that the programs share which disturb a selection of points."""

import argparse
from pathlib import Path


class Options(argparse.ArgumentParser):
    """Tells `usage`, the text of the program, of what it does not understand."""

    def __init__(self, usage, modes, count):
        super().__init__(usage=usage, add_help=False)
        self.add_argument("program", type=Path)
        self.add_argument("--all", action="store_true")
        self.add_argument("--count", type=int, default=count)
        self.add_argument("--mode", action="append", choices=list(modes))
        self.add_argument("--point")
        self.add_argument("--keep", action="store_true")
        self.add_argument("--preload", type=Path)

    def given(self):
        """The options, with whole paths of the program and of the preloaded library, which are there."""
        given = self.parse_args()
        given.program = given.program.resolve()
        build = given.program.parent.parent
        given.preload = (given.preload or build / "tests/faults/libquillon_faults.so").resolve()
        if not given.preload.exists():
            self.error(f"{given.preload} is not there; build the target quillon_faults")
        return given
