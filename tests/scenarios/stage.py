"""A stage for whole-program tests: a host folder and a disk in a temporary folder, the program run
as a process, and independent readers that confirm what it wrote."""

import json
import os
import re
import shutil
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT / "demo"), str(ROOT / "tests" / "outside")]

from processes import Failed, WithErrorsInAFile, output_of, start, told_by  # noqa: E402
from readers import checker_at_hand, dumped, exported, faults_of  # noqa: E402

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
# A program for Windows: runs are its own then, under Wine, and this system's program only looks at what
# they have made.
WINDOWS_PROGRAM = os.environ.get("QUILLON_WINDOWS_PROGRAM")
OF_WINDOWS = ("run", "check", "undo", "preview", "changes")
# The sanitizers look at the memory of the program. What that writes is what every other build writes:
# nothing that a process of its own would have to read is compared under them.
SANITIZED = "QUILLON_SANITIZED" in os.environ


class Stage:
    """WORK/host is the host folder, WORK/disk is drive D: with Music, Lists and M3u in it."""

    def __init__(self, program):
        self.work = Path(tempfile.mkdtemp(prefix="quillon-stage-"))
        self.work.chmod(0o755)
        # A copy, so that another account can run it wherever the build folder lies.
        self.program = self.work / "quillon"
        self.windows_program = WINDOWS_PROGRAM
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

    def start(self, *arguments, unprivileged=False, under=(), **options):
        """The program as a process, in the stage's folder. Runs of a program for Windows can be
        started by another one."""
        if unprivileged and os.geteuid() == 0:
            options.update(user=NOBODY, group=NOBODY, extra_groups=[])
        if self.windows_program and arguments[0] in OF_WINDOWS:
            runner = ROOT / "scripts" / "run-windows-program"
            return start([runner, *under, self.windows_program, *arguments], self.work,
                         kind=WithErrorsInAFile, **options)
        return start([self.program, *arguments], self.work, **options)

    def call(self, *arguments, **options):
        """Runs the program to its end: exit status, standard output, standard error."""
        return told_by(self.start(*arguments, **options))

    def tool(self, *arguments):
        """Runs the program where it must succeed; its output."""
        return output_of([self.program, *arguments], self.work)

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
        for work in (str(self.work), str(self.work).replace("/", "\\")):
            # Under Wine all of this system's files are on a drive.
            text = text.replace("Z:" + work, "WORK").replace(work, "WORK")
        text = re.sub(r"\bLine \d+ ", "Line N ", text)
        # The program for Windows says local paths as Windows does.
        text = re.sub(r"\bRemoved\\[-_\d]{19}\\.*", lambda path: path[0].replace("\\", "/"), text)
        text = re.sub(r"\bRemoved/[-_\d]{19}/", "Removed/STAMP/", text)
        return re.sub(r"_Copy Dated_\w+?_[AP]M_", "_Copy Dated_STAMP_", text)

    def confirm_database(self, unrepaired=False):
        """Asks every other reader at hand whether the file is whole and says the same. A run that
        has repaired no playlist may leave what it had captured of them."""
        self.tool("db", "check", str(self.database))
        if not SANITIZED:
            self.confirm_rows()
        leftovers = {".journal", ".ldb"} | (set() if unrepaired else {".playlists"})
        for leftover in self.disk.iterdir():
            if leftover.suffix in leftovers:
                raise Failed(f"{leftover.name} was left behind")

    def exported(self, table):
        return exported(self.database, table)

    def confirm_rows(self):
        rows = self.all_rows()
        for table in TABLES:
            confirm_same_rows(table, rows[table], self.exported(table), "mdb-export")
        confirm_whole(self.database)
        if checker_at_hand():
            theirs = dumped(self.database)
            for table in TABLES:
                confirm_same_rows(table, rows[table], theirs.get(table, []), "mdbcheck",
                                  null="(Null)")


TABLES = ("Albums", "Tracks", "Playlists", "Spinner", "SpinnerArtist", "SpinnerGenre",
          "SpinnerID3Differences")


# Every reader has a way of its own to print these.
DATES_AND_SWITCHES = {"DateAdded", "DateReleased", "DateLastPlayed", "DownLoadTime", "UpdateTime",
                      "LocationValid", "NeverPlay", "AutoGenre", "AutoArtist", "Device", "Browser"}


def confirm_whole(database):
    """The structural checker's word, where it is at hand."""
    if checker_at_hand() and (faults := faults_of(database)):
        raise Failed(faults)


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
