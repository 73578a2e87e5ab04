"""A stage for whole-program tests: a host folder and a disk in a temporary folder, the program run
as a process, and independent readers that confirm what it wrote."""

import csv
import io
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SHARED = Path(os.environ.get("QUILLON_SHARED", ROOT.parent / "shared"))
CHECKER = SHARED / "mdb" / "mdbcheck"
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "demo"))

BASE_SETTINGS = {
    "LibraryRoot": r"D:\Music",
    "Nirvis_CDJ_DB": r"D:\jukebox.mdb",
    "PlayListPath": "D:\\Lists\\",
    "PlayListPath2": "D:\\M3u\\",
    "Reconcile": "1",
    "ID3Reconcile": "0",
    "ArtistPlaylist": "0",
    "GenrePlaylist": "0",
}
NOBODY = 65534
TIME_LIMIT = 240


class Failed(Exception):
    """What was expected did not come true; the text says what."""


class Stage:
    """WORK/host is the host folder, WORK/disk is drive D: with Music, Lists and M3u in it."""

    def __init__(self, program):
        self.work = Path(tempfile.mkdtemp(prefix="quillon-stage-"))
        self.work.chmod(0o755)
        # A copy, so that another account can run it wherever the build folder lies.
        self.program = self.work / "quillon"
        shutil.copy2(program, self.program)
        self.host = self.work / "host"
        self.disk = self.work / "disk"
        self.database = self.disk / "jukebox.mdb"
        self.log = self.host / "host.log"
        self.web = self.host / "HTML"
        self.settings = dict(BASE_SETTINGS)
        for folder in ("host/Data", "host/HTML", "disk/Music", "disk/Lists", "disk/M3u"):
            (self.work / folder).mkdir(parents=True)
        (self.host / "host.ini").write_text("[Plugins]\nQuillon=1\n\n[Drives]\nD=../disk\n")
        self.write_settings()
        self.tool("db", "create", str(self.database))

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        for folder, _, _ in os.walk(self.work):
            os.chmod(folder, 0o755)
        shutil.rmtree(self.work)

    def write_settings(self):
        lines = ["[NPFrame]"] + [f"{key}={value}" for key, value in self.settings.items()]
        (self.host / "Quillon.ini").write_text("\r\n".join(lines) + "\r\n", "utf-8", newline="")

    def start(self, *arguments, unprivileged=False, **options):
        """The program as a process, in the stage's folder."""
        if unprivileged and os.geteuid() == 0:
            options.update(user=NOBODY, group=NOBODY, extra_groups=[])
        return start([str(self.program), *arguments], self.work, **options)

    def call(self, *arguments, **options):
        """Runs the program to its end: exit status, standard output, standard error."""
        return told_by(self.start(*arguments, **options))

    def tool(self, *arguments):
        """Runs the program where it must succeed; its output."""
        status, output, errors = self.call(*arguments)
        if status != 0:
            raise Failed(f"quillon {' '.join(arguments)}: exit status {status}\n{output}{errors}")
        return output

    def reconcile(self, *arguments, **options):
        return self.call("run", "--host", str(self.host), "--view", "plain", *arguments, **options)

    def execute(self, statement):
        self.tool("db", "exec", str(self.database), statement)

    def query(self, statement):
        """Rows of a SELECT as dictionaries."""
        output = self.tool("db", "query", "--json", str(self.database), statement)
        return [json.loads(line) for line in output.splitlines()]

    def all_rows(self):
        return {table: self.query(f"SELECT * FROM [{table}]") for table in TABLES}

    def log_messages(self):
        """Messages of the host's log, with what differs from run to run made alike."""
        if not self.log.exists():
            return []
        lines = self.log.read_text("utf-8").splitlines()
        return [self.neutral(line.split("\t", 2)[2]) for line in lines]

    def neutral(self, text):
        text = text.replace(str(self.work), "WORK").replace(str(self.work).replace("/", "\\"),
                                                           "WORK")
        text = re.sub(r"\bLine \d+ ", "Line N ", text)
        text = re.sub(r"\bRemoved/[-_\d]{19}/", "Removed/STAMP/", text)
        return re.sub(r"_Copy Dated_\w+?_[AP]M_", "_Copy Dated_STAMP_", text)

    def confirm_database(self, unrepaired=False):
        """Asks every other reader at hand whether the file is whole and says the same. A run that
        has repaired no playlist may leave what it had captured of them."""
        rows = self.all_rows()
        for table in TABLES:
            confirm_same_rows(table, rows[table], self.exported(table), "mdb-export")
        self.tool("db", "check", str(self.database))
        if CHECKER.exists():
            confirm_whole(self.database)
            theirs = dumped(self.database)
            for table in TABLES:
                confirm_same_rows(table, rows[table], theirs.get(table, []), "mdbcheck",
                                  null="(Null)")
        leftovers = {".journal", ".ldb"} | (set() if unrepaired else {".playlists"})
        for leftover in self.disk.iterdir():
            if leftover.suffix in leftovers:
                raise Failed(f"{leftover.name} was left behind")

    def exported(self, table):
        return exported(self.database, table)


def start(command, folder, environment=None, **options):
    """A program as a process in a folder, with further variables of its environment."""
    variables = dict(os.environ, LC_ALL="C.UTF-8", **(environment or {}))
    variables.pop("QUILLON_HOST", None)
    return subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, env=variables,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)


def told_by(process, time_limit=TIME_LIMIT):
    """Waits for a process: exit status, standard output, standard error."""
    try:
        output, errors = process.communicate(timeout=time_limit)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise Failed(f"{' '.join(map(str, process.args))} did not end") from None
    return process.returncode, output.decode("utf-8"), errors.decode("utf-8")


def exported(database, table, *options):
    """The rows of a table as mdb-export prints them."""
    result = subprocess.run(["mdb-export", *options, database, table], check=True,
                            capture_output=True, env=dict(os.environ, LC_ALL="C.UTF-8"))
    return list(csv.DictReader(io.StringIO(result.stdout.decode("utf-8"), newline="")))


TABLES = ("Albums", "Tracks", "Playlists", "Spinner", "SpinnerArtist", "SpinnerGenre",
          "SpinnerID3Differences")


# Every reader has a way of its own to print these.
DATES_AND_SWITCHES = {"DateAdded", "DateReleased", "DateLastPlayed", "DownLoadTime", "UpdateTime",
                      "LocationValid", "NeverPlay", "AutoGenre", "AutoArtist", "Device", "Browser"}


def confirm_whole(database):
    """The structural checker's word, where it is at hand."""
    result = subprocess.run([CHECKER, database], capture_output=True, text=True, check=False)
    if result.returncode != 0:
        raise Failed(f"mdbcheck finds faults:\n{result.stdout}{result.stderr}")


def dumped(database):
    """The rows of every table that has any, as the structural checker reads them."""
    result = subprocess.run([CHECKER, "--dump", database], check=True, capture_output=True)
    tables = {}
    for line in result.stdout.decode("utf-8").splitlines():
        row = json.loads(line)
        tables.setdefault(row["_table"], []).append(row)
    return tables


def confirm_same_rows(table, own, others, reader, null=""):
    """Compares texts and numbers. mdb-export prints Null like an empty text."""

    def plain(row, fields):
        return tuple(null if row[field] is None else str(row[field]) for field in fields)

    fields = [field for field in (own[0] if own else {}) if field not in DATES_AND_SWITCHES]
    mine = sorted(plain(row, fields) for row in own)
    theirs = sorted(plain(row, fields) for row in others)
    if mine != theirs:
        different = [f"  here: {a}\n  there: {b}" for a, b in zip(mine, theirs) if a != b][:3]
        raise Failed(f"{reader} reads {len(theirs)} rows of {table} for our {len(mine)}, or others:"
                     "\n" + "\n".join(different))
