"""Programs that are not ours and read the databases that ours has written."""

import contextlib
import csv
import functools
import io
import json
import os
import sys
from pathlib import Path
from types import ModuleType

from processes import output_of

ROOT = Path(__file__).resolve().parents[2]
SHARED = Path(os.environ.get("QUILLON_SHARED", ROOT.parent / "shared"))
CHECKER = SHARED / "mdb" / "mdbcheck"


def exported(database, table, *options):
    """The rows of a table as mdb-export prints them."""
    rows = output_of(["mdb-export", *options, database, table])
    return list(csv.DictReader(io.StringIO(rows, newline="")))


def checker_at_hand():
    return CHECKER.exists()


def asked(*arguments):
    """What the structural checker says; it is loaded once and not a process of its own each time.
    Exit status and all that it prints."""
    module = sys.modules.get("mdbcheck") or loaded()
    told = io.StringIO()
    with contextlib.redirect_stdout(told), contextlib.redirect_stderr(told):
        status = module.main([str(argument) for argument in arguments])
    return status, told.getvalue()


def loaded():
    module = ModuleType("mdbcheck")
    module.__file__ = str(CHECKER)
    exec(compile(CHECKER.read_bytes(), module.__file__, "exec"), module.__dict__)
    # Half of the time that a small file takes is reading the same table again.
    module.SortTable = functools.cache(module.SortTable)
    sys.modules["mdbcheck"] = module
    return module


def faults_of(database):
    """The structural checker's word; empty where it finds no fault."""
    status, told = asked(database)
    return "" if status == 0 else f"mdbcheck finds faults:\n{told}"


def dumped(database, *table):
    """The rows of every table that has any, or of one, as the structural checker reads them."""
    status, told = asked("--dump", database, *table)
    if status != 0:
        raise RuntimeError(told)
    tables = {}
    for line in told.splitlines():
        row = json.loads(line)
        tables.setdefault(row["_table"], []).append(row)
    return tables
