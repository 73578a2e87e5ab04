"""What the program writes into a database is what other readers find there: rows of all types of fields, long texts,
tables and indexes made by statements, an imported file, a compacted one.

usage: other_readers_test.py QUILLON programs|npm FOLDER-FOR-NPM
"""

import base64
import csv
import io
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, WITH_NPM, NPM_FOLDER = sys.argv[1], sys.argv[2] == "npm", pathlib.Path(sys.argv[3])
SKIPPED = 77
HERE = pathlib.Path(__file__).resolve().parent
SHARED = pathlib.Path(os.environ.get("QUILLON_SHARED", HERE.parents[2] / "shared"))
CHECKER = SHARED / "mdb" / "mdbcheck"
READER = "mdb-reader@3.2.0"

LONG = "".join(f"{i}: Ärger, \"quoted\" ☃ \U0001F3B5\r\n" for i in range(900))
BYTES = bytes(range(256)) * 30


def call(*words, text=None):
    """What the program prints, line ends as they are."""
    data = None if text is None else text.encode("utf-8")
    done = subprocess.run([PROGRAM, *map(str, words)], input=data, capture_output=True, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{words}: {done.stderr.decode('utf-8')}")
    return done.stdout.decode("utf-8")


def rows_to_import():
    """One row a case: nothing, zeros, the least and the greatest values, texts that need care."""
    empty = dict.fromkeys(["Flag", "Tiny", "Small", "Big", "Money", "Half", "Whole", "Day", "Raw", "Word", "Picture",
                           "Story", "Mark", "Exact"])
    return [
        {**empty, "Word": "nothing else"},
        {"Flag": "true", "Tiny": "255", "Small": "-32768", "Big": "2147483647", "Money": "922337203685477.5807",
         "Half": "0.5", "Whole": "-1.7976931348623157e308", "Day": "2006-02-03T08:00:00",
         "Raw": base64.b64encode(b"\x00\xff\x01").decode(), "Word": "it's; \"quoted\", and more",
         "Picture": base64.b64encode(BYTES).decode(), "Story": LONG,
         "Mark": "{01234567-89AB-CDEF-0123-456789ABCDEF}", "Exact": "1234567890123456.7891"},
        {"Flag": "false", "Tiny": "0", "Small": "32767", "Big": "-2147483648", "Money": "-0.0001", "Half": "-1024",
         "Whole": "0", "Day": "1899-12-29T06:00:00", "Raw": "AA==", "Word": "", "Picture": "", "Story": "two\nlines",
         "Mark": "{00000000-0000-0000-0000-000000000000}", "Exact": "-0.0001"},
        {**empty, "Word": "日本語 łódź ß", "Story": "x" * 70, "Day": "9999-12-31", "Money": "12.5"},
    ]


def as_csv(rows):
    def field(text):
        return "" if text is None else '"' + text.replace('"', '""') + '"'

    lines = [",".join(rows[0])] + [",".join(field(text) for text in row.values()) for row in rows]
    return "\ufeff" + "\r\n".join(lines) + "\r\n"


def why_no_reader_from_npm():
    """Installs it; "" when it is there."""
    NPM_FOLDER.mkdir(parents=True, exist_ok=True)
    shutil.copy(HERE / "read_all.mjs", NPM_FOLDER)
    if (NPM_FOLDER / "node_modules" / "mdb-reader").is_dir():
        return ""
    if not shutil.which("npm"):
        return "there is no npm"
    done = subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--prefix", str(NPM_FOLDER), READER],
                          capture_output=True, encoding="utf-8", check=False, timeout=300)
    return done.stderr.strip() if done.returncode != 0 else ""


class OtherReaders(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "all.mdb"

    def same(self, found, wanted, what):
        """Equal; long texts are not compared line by line for a message."""
        self.assertTrue(found == wanted, f"{what}: {found!r:.300} is not {wanted!r:.300}")

    def make(self):
        call("db", "create", "--empty", self.file)
        script = """
            -- all types
            CREATE TABLE Everything (ID COUNTER PRIMARY KEY, Flag YESNO, Tiny BYTE, Small SHORT, Big LONG,
                Money CURRENCY, Half SINGLE, Whole DOUBLE, Day DATETIME, Raw BINARY(20), Word TEXT(50),
                Picture LONGBINARY, Story MEMO, Mark GUID, Exact DECIMAL(20,4));
            CREATE INDEX ByDay ON Everything (Day DESC, Money);
            CREATE TABLE Names (Name TEXT(40) NOT NULL, Number LONG, CONSTRAINT Both UNIQUE (Name, Number));
            INSERT INTO Names VALUES ('semi;colon', 1);
        """
        self.assertEqual(call("db", "exec", self.file, text=script), "4 statements, 1 row\n")
        self.assertEqual(call("db", "import", self.file, "Everything", "-", text=as_csv(rows_to_import())), "4 rows\n")

    def check_structure(self):
        self.assertIn(": OK; ", call("db", "check", self.file))
        if CHECKER.exists():
            done = subprocess.run([CHECKER, self.file], capture_output=True, encoding="utf-8", check=False)
            self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def exported(self, table):
        done = subprocess.run(["mdb-export", "-b", "strip", "-D", "%Y-%m-%d", "-T", "%Y-%m-%dT%H:%M:%S", self.file,
                               table], capture_output=True, check=True)
        return list(csv.DictReader(io.StringIO(done.stdout.decode("utf-8"), newline="")))

    def read_by_npm(self):
        done = subprocess.run(["node", str(NPM_FOLDER / "read_all.mjs"), str(self.file)], capture_output=True,
                              encoding="utf-8", check=True)
        return json.loads(done.stdout)

    def compare(self):
        if WITH_NPM:
            self.compare_by_npm()
        else:
            self.compare_by_mdb_export()

    def compare_by_mdb_export(self):
        rows = self.exported("Everything")
        for found, wanted in zip(rows, rows_to_import(), strict=True):
            for field in ("Tiny", "Small", "Big", "Word", "Story"):
                # It prints two question marks for a character beyond the first plane.
                self.same(found[field], (wanted[field] or "").replace("\U0001F3B5", "??"), field)
            self.assertEqual(found["Flag"], "1" if wanted["Flag"] == "true" else "0")
        self.assertEqual([row["ID"] for row in rows], ["1", "2", "3", "4"])

    def compare_by_npm(self):
        tables = self.read_by_npm()
        self.assertEqual(sorted(tables), ["Everything", "Names"])
        rows = tables["Everything"]["rows"]
        for found, wanted in zip(rows, rows_to_import(), strict=True):
            for field in ("Tiny", "Small", "Big"):
                self.assertEqual(found[field], None if wanted[field] is None else int(wanted[field]), field)
            for field in ("Word", "Story"):
                self.same(found[field], wanted[field], field)
            self.assertEqual(found["Flag"], wanted["Flag"] == "true")
            for field in ("Raw", "Picture"):
                self.same(found[field] or "", wanted[field] or "", field)
        self.assertEqual(rows[1]["Money"], "922337203685477.5807")
        self.assertEqual(rows[1]["Exact"], "1234567890123456.7891")
        self.assertEqual(rows[1]["Day"], "2006-02-03T08:00:00.000Z")
        self.assertEqual(rows[2]["Exact"], "-0.0001")
        self.assertEqual(tables["Names"]["rows"], [{"Name": "semi;colon", "Number": 1}])
        types = dict(tables["Everything"]["columns"])
        self.assertEqual(types["Story"], "memo")
        self.assertEqual(types["Mark"], "repid")
        self.assertEqual(types["Exact"], "numeric")
        self.assertEqual(rows[1]["Mark"].strip("{}").upper(), "01234567-89AB-CDEF-0123-456789ABCDEF")

    def test_rows_of_all_types(self):
        self.make()
        self.check_structure()
        self.compare()

    def test_export_is_what_import_reads(self):
        self.make()
        first = call("db", "export", self.file, "Everything")
        copy = self.folder / "copy.mdb"
        call("db", "create", "--empty", copy)
        call("db", "exec", copy, text=call("db", "schema", "--sql", self.file))
        call("db", "import", copy, "Everything", "-", text=first)
        self.same(call("db", "export", copy, "Everything"), first, "the copy")
        self.assertEqual(call("db", "schema", copy, "Everything"), call("db", "schema", self.file, "Everything"))
        objects = [json.loads(line) for line in call("db", "export", "--json", copy, "Everything").splitlines()]
        self.same(objects[1]["Story"], LONG, "Story")
        self.same(base64.b64decode(objects[1]["Picture"]), BYTES, "Picture")

    def test_after_changes_and_compacting(self):
        self.make()
        for _ in range(3):
            call("db", "exec", self.file, "INSERT INTO Names SELECT Word & ID, ID FROM Everything")
            call("db", "exec", self.file, "DELETE * FROM Names WHERE Number>1 OR Name<>'semi;colon'")
        call("db", "exec", self.file, text="CREATE TABLE Gone (x LONGBINARY); INSERT INTO Gone SELECT Picture FROM "
             "Everything; DROP TABLE Gone; DROP INDEX ByDay ON Everything; CREATE INDEX ByWord ON Everything (Word)")
        self.check_structure()
        before, rows = self.file.stat().st_size, call("db", "export", self.file, "Everything")
        told = call("db", "compact", self.file)
        self.assertIn("all.before-compact.mdb", told)
        self.assertLess(self.file.stat().st_size, before)
        self.check_structure()
        self.same(call("db", "export", self.file, "Everything"), rows, "the compacted file")
        self.same(call("db", "export", self.folder / "all.before-compact.mdb", "Everything"), rows, "the kept file")
        self.assertIn("ByWord", call("db", "schema", self.file, "Everything"))
        self.compare()
        call("db", "exec", self.file, "INSERT INTO Everything (Word) VALUES ('next')")
        self.assertEqual(call("db", "query", "--csv", self.file, "SELECT ID FROM Everything WHERE Word='next'"),
                         "ID\n5\n", "numbers go on where they were")
        call("db", "exec", self.file, "DELETE * FROM Everything WHERE ID=5")
        self.compare()


if __name__ == "__main__":
    if WITH_NPM and (problem := why_no_reader_from_npm()):
        print("skipped: the reader cannot be installed from npm:", problem)
        sys.exit(SKIPPED)
    unittest.main(argv=sys.argv[:1])
