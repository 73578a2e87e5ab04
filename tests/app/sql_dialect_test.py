"""The examples of docs/sql-dialect.md do what stands below them.

usage: sql_dialect_test.py QUILLON DOCUMENT
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM, DOCUMENT = sys.argv[1], pathlib.Path(sys.argv[2])


def examples():
    """Each block of SQL with the kind and the text of the block below it, "" where there is none."""
    blocks = re.findall(r"^```(\w+)\n(.*?)^```$", DOCUMENT.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
    for i, (kind, text) in enumerate(blocks):
        if kind != "sql":
            continue
        below = blocks[i + 1] if i + 1 < len(blocks) and blocks[i + 1][0] != "sql" else ("", "")
        yield text, *below


class Examples(unittest.TestCase):
    def test_do_what_the_document_says(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "examples.mdb"
            subprocess.run([PROGRAM, "db", "create", "--empty", file], check=True, capture_output=True)
            tried = 0
            for sql, kind, expected in examples():
                command = ["query", "--csv"] if sql.startswith("SELECT") else ["exec"]
                done = subprocess.run([PROGRAM, "db", *command, file], input=sql, capture_output=True,
                                      encoding="utf-8", check=False)
                with self.subTest(sql=sql):
                    if kind == "error":
                        self.assertEqual((done.returncode, done.stderr), (2, "quillon: " + expected))
                    else:
                        self.assertEqual(done.returncode, 0, done.stderr)
                        if kind == "csv":
                            self.assertEqual(done.stdout, expected)
                tried += 1
            self.assertGreater(tried, 15)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
