"""`quillon db` as a person or a script uses it: tables, schema, statements from standard input, parameters, import,
export, compact.

usage: db_tools_test.py QUILLON
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv[1]

SCRIPT = """
-- A shelf of books.
CREATE TABLE Books (ID COUNTER PRIMARY KEY, Title TEXT(60) NOT NULL, Year SHORT, Price CURRENCY, Cover LONGBINARY);
CREATE UNIQUE INDEX ByTitle ON Books (Title, Year DESC);
INSERT INTO Books (Title, Year, Price) VALUES ('Emma; or: "x"', 1815, 12.5);
INSERT INTO Books (Title) VALUES ('Ulysses')
"""


class DbTools(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "books.mdb"
        self.assertEqual(self.out("create", "--empty", self.file), f"{self.file}: a new database without tables\n")

    def call(self, *words, text=""):
        data = text if isinstance(text, bytes) else text.encode("utf-8")
        done = subprocess.run([PROGRAM, "db", *map(str, words)], input=data, capture_output=True, check=False)
        return done.returncode, done.stdout.decode("utf-8"), done.stderr.decode("utf-8")

    def out(self, *words, text=""):
        status, out, err = self.call(*words, text=text)
        self.assertEqual((status, err), (0, ""), words)
        return out

    def refusal(self, *words, text=""):
        status, out, err = self.call(*words, text=text)
        self.assertEqual((status, out), (2, ""), words)
        self.assertTrue(err.startswith("quillon: ") and err.count("\n") == 1, err)
        return err[len("quillon: "):-1]

    def fill(self):
        self.assertEqual(self.out("exec", self.file, text=SCRIPT), "4 statements, 2 rows\n")

    def test_tables_and_schema(self):
        self.fill()
        self.assertEqual(self.out("tables", self.file), """\
Table  Rows  Fields  Indexes
-----  ----  ------  -------
Books     2       5        2
(1 row)
""")
        self.assertEqual(self.out("tables", self.file, "--csv"), "Table,Rows,Fields,Indexes\nBooks,2,5,2\n")
        self.assertEqual(self.out("schema", self.file, "books"), """\
Books (2 rows)
  Field  Type        Rules
  -----  ----------  -----------
  ID     COUNTER     primary key
  Title  TEXT(60)    required
  Year   SHORT
  Price  CURRENCY
  Cover  LONGBINARY

  Index       Fields            Rules
  ----------  ----------------  -----------
  ByTitle     Title, Year DESC  unique
  PrimaryKey  ID                primary key
""")
        sql = self.out("schema", self.file, "--sql")
        copy = self.folder / "copy.mdb"
        self.out("create", "--empty", copy)
        self.out("exec", copy, text=sql)
        self.assertEqual(self.out("schema", copy, "--sql"), sql)
        self.assertEqual(self.refusal("schema", self.file, "Nothing"), "Cannot find the table 'Nothing'")

    def test_statements_from_standard_input_are_done_all_or_none(self):
        self.fill()
        content = self.file.read_bytes()
        told = self.refusal("exec", self.file, text="DELETE * FROM Books;\n\nDROP TABLE Books;\nINSERT INTO Gone "
                            "VALUES (1);\n")
        self.assertEqual(told, "Line 4: Cannot find the output table 'Gone'; nothing was changed")
        self.assertEqual(self.file.read_bytes(), content)
        self.assertEqual(self.refusal("exec", self.file, text="  \n-- nothing\n"), "there is no statement")
        self.assertEqual(self.out("query", self.file, "--csv", text="SELECT Count(*) AS N FROM Books"), "N\n2\n")

    def test_a_statement_that_concerns_no_rows_is_done(self):
        self.assertEqual(self.out("exec", self.file, "CREATE TABLE t (a LONG)"), "done\n")
        self.assertEqual(self.out("exec", self.file, "INSERT INTO t VALUES (1)"), "1 row\n")

    def test_formats(self):
        self.fill()
        query = "SELECT Title, Year, Price FROM Books ORDER BY ID"
        self.assertEqual(self.out("query", self.file, query, "--csv"),
                         'Title,Year,Price\n"Emma; or: ""x""",1815,12.5000\nUlysses,,\n')
        self.assertEqual(self.out("query", self.file, query, "--table"), self.out("query", self.file, query))
        first, second = (json.loads(line) for line in self.out("query", self.file, query, "--json").splitlines())
        self.assertEqual(first, {"Title": 'Emma; or: "x"', "Year": 1815, "Price": "12.5000"})
        self.assertEqual(second["Year"], None)

    def test_json_is_valid_whatever_bytes_there_are(self):
        self.fill()
        every = b"".join(bytes([byte]) for byte in range(1, 256) if byte not in b"'\x1a")
        done = subprocess.run([PROGRAM, "db", "query", str(self.file), "--json", "-"],
                              input=b"SELECT TOP 1 '" + every + b"' AS [\xff\x80] FROM Books", capture_output=True,
                              check=True)
        row = json.loads(done.stdout.decode("utf-8"))
        self.assertEqual(list(row), ["\ufffd\ufffd"])
        self.assertIn('\x01\x02', row["\ufffd\ufffd"])

    def test_parameters(self):
        self.fill()
        name = "O'Brien; \"quoted\" %"
        self.out("exec", self.file, "INSERT INTO Books (Title, Year, Price) VALUES (:t, :y, :p)", "--param", "t=" + name,
                 "--param", "y=2001", "--param", "p")
        self.assertEqual(self.out("query", self.file, "SELECT Year, Price FROM Books WHERE Title=:t AND Year=:y",
                                  "--param", f"t={name}", "--param", "y=2001", "--csv"), "Year,Price\n2001,\n")
        self.assertEqual(self.out("query", self.file, "SELECT TOP 1 :d AS d FROM Books", "--param", "d=#2006-02-03#",
                                  "--csv"), "d\n2006-02-03T00:00:00\n")
        self.assertIn(":who': this parameter has no value", self.refusal("query", self.file, "SELECT :who FROM Books"))
        self.assertIn("is no date", self.refusal("query", self.file, "SELECT :d FROM Books", "--param", "d=#x#"))

    def test_hints_where_like_means_something_else(self):
        self.fill()
        status, out, err = self.call("query", self.file, "SELECT ID FROM Books WHERE Title Like 'Em*'")
        self.assertEqual((status, out.splitlines()[-1]), (0, "(0 rows)"))
        self.assertEqual(err, "quillon: hint: Like 'Em*': * and ? stand for themselves; % stands for any text, as in "
                         "Like 'Em%'\n")

    def test_long_binary_values_are_shortened_in_tables(self):
        self.fill()
        self.out("import", self.file, "Books", "-", text="Title,Cover\nwith cover," + "QUJD" * 1000 + "\nshort,QUJD\n")
        shown = self.out("query", self.file, "SELECT Title, Cover FROM Books WHERE Cover Is Not Null ORDER BY Title")
        self.assertEqual(shown.splitlines()[2:4], ["short       QUJD", "with cover  QUJDQUJDQUJDQUJD... (3000 bytes)"])
        self.assertIn("QUJD" * 1000, self.out("query", self.file, "SELECT Cover FROM Books", "--csv"))

    def test_import_tells_what_is_wrong_and_changes_nothing(self):
        self.fill()
        data = self.folder / "data.csv"
        content = self.file.read_bytes()

        def told(text, *options):
            data.write_bytes(text if isinstance(text, bytes) else text.encode("utf-8"))
            return self.refusal("import", self.file, "Books", data, *options).replace(str(self.folder) + "/", "")

        for text, problem in {
                "": "data.csv: there is nothing in it, not even a header; nothing was imported",
                "Title,Jahr\n": "data.csv: line 1: the table Books has no field 'Jahr'; it has ID, Title, Year, Price, "
                "Cover. Give the fields these names, or use --no-header if the first line is a row; nothing was "
                "imported",
                'Title,Year\na,1\n"b\nc",x\n': "data.csv: line 3: Type mismatch: the value does not suit the field "
                "'Year'; nothing was imported",
                "Title,Year\na\n": "data.csv: line 2: it has 1 fields where 2 are expected; nothing was imported",
                "Title,title\na,b\n": "data.csv: line 1: it names the field 'title' twice; nothing was imported",
                'Title\n"a': "data.csv: line 2: a quote has no end; nothing was imported",
                b"Title\n\xe4\n": "data.csv: line 2, field Title: the text is not UTF-8; convert the file first, for "
                "example with: iconv -f WINDOWS-1252 -t UTF-8; nothing was imported",
                "Title,Cover\na,?\n": "data.csv: line 2, field Cover: a binary value must be written in base64; "
                "nothing was imported",
                "Year\n1\n": "data.csv: line 2: Field Title of table Books needs a value; nothing was imported",
        }.items():
            self.assertEqual(told(text), problem)
        self.assertEqual(self.file.read_bytes(), content)
        self.assertIn("Make it first, for example: quillon db exec",
                      self.refusal("import", self.file, "Nothing", data))
        self.assertIn("cannot be read", self.refusal("import", self.file, "Books", self.folder / "none.csv"))

    def test_import_of_other_forms(self):
        self.fill()
        self.assertEqual(self.out("import", self.file, "Books", "-", "--separator", ";", "--no-header",
                                  text='7;"semi;colon";1900;1.25;\r\n8;"";;;\r\n'), "2 rows\n")
        self.assertEqual(self.out("query", self.file, "SELECT ID, Title, Price FROM Books WHERE ID>6", "--csv"),
                         'ID,Title,Price\n7,"semi;colon",1.2500\n8,"",\n')

    def test_compact_keeps_the_file_as_it_was(self):
        self.fill()
        self.out("import", self.file, "Books", "-", text="Title\n" + "\n".join(f"t{i}" for i in range(3000)) + "\n")
        self.out("exec", self.file, "DELETE * FROM Books WHERE ID>2")
        self.file.chmod(0o640)
        before, rows = self.file.read_bytes(), self.out("export", self.file, "Books")
        told = self.out("compact", self.file)
        kept = self.folder / "books.before-compact.mdb"
        self.assertEqual(told, f"{self.file}: {self.file.stat().st_size} bytes, {len(before)} before; the file as it "
                         f"was is {kept}\n")
        self.assertLess(self.file.stat().st_size, len(before) // 2)
        self.assertEqual(kept.read_bytes(), before)
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o640)
        self.assertEqual(self.out("export", self.file, "Books"), rows)
        self.out("compact", self.file)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["books.before-compact-2.mdb", "books.before-compact.mdb", "books.mdb"])
        content = bytearray(kept.read_bytes())
        definition = next(at for at in range(7 * 4096, len(content), 4096) if content[at] == 2)
        content[definition + 16] += 1  # the number of rows
        kept.write_bytes(content)
        self.assertIn("Nothing was changed.", self.refusal("compact", kept))
        self.assertEqual(kept.read_bytes(), bytes(content))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
