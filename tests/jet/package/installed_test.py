"""Installs the library into a temporary folder, builds the examples against what is there, and runs them.

usage: installed_test.py CMAKE BUILD-FOLDER EXAMPLES COMPILER VERSION
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, EXAMPLES, COMPILER, VERSION = sys.argv[1:]
NAMES = ["make_database", "add_books", "find_books", "read_schema"]


def run(*words, **more):
    done = subprocess.run([str(word) for word in words], capture_output=True, encoding="utf-8", check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, words))}\n{done.stdout}{done.stderr}")
    return done.stdout


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.root = pathlib.Path(cls.folder.name)
        cls.prefix = cls.root / "usr"
        run(CMAKE, "--install", BUILD, "--component", "jet", "--prefix", cls.prefix)
        cls.libraries = next(cls.prefix.rglob("libquillon-jet.so")).parent
        cls.searching = dict(os.environ, PKG_CONFIG_PATH=str(cls.libraries / "pkgconfig"),
                             LD_LIBRARY_PATH=str(cls.libraries))

    def try_examples(self, programs):
        file = programs / "books.mdb"
        self.assertIn("made", run(programs / "make_database", file, env=self.searching))
        self.assertEqual(run(programs / "add_books", file, env=self.searching), "2 books\n")
        self.assertEqual(run(programs / "find_books", file, "cervantes", env=self.searching),
                         "1\tDon Quijote\tMiguel de Cervantes\t12.99\n2\tLa Galatea\tMiguel de Cervantes\t12.99\n")
        self.assertEqual(run(programs / "read_schema", file, env=self.searching), f"""\
-- read with quillon-jet {VERSION}
-- Authors: 1 rows
CREATE TABLE [Authors] ([ID] COUNTER, [Name] TEXT(100));
CREATE INDEX [PrimaryKey] ON [Authors] ([ID]) WITH PRIMARY;
-- Books: 2 rows
CREATE TABLE [Books] ([ID] COUNTER, [Title] TEXT(200) NOT NULL, [Author] LONG, [Bought] DATETIME, [Price] CURRENCY, \
[Notes] MEMO);
CREATE INDEX [ByAuthor] ON [Books] ([Author]);
CREATE INDEX [PrimaryKey] ON [Books] ([ID]) WITH PRIMARY;
""")
        shown = run("mdb-export", "-H", file, "Books")
        self.assertIn('1,"Don Quijote",1,', shown)

    def build_by_cmake(self, name, *options):
        build = self.root / name
        run(CMAKE, "-S", EXAMPLES, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}",
            f"-DCMAKE_CXX_COMPILER={COMPILER}", *options)
        run(CMAKE, "--build", build)
        return build

    def build_by_pkg_config(self, name, *options):
        build = self.root / name
        build.mkdir()
        flags = run("pkg-config", "--cflags", "--libs", *options, "quillon-jet", env=self.searching).split()
        for example in NAMES:
            run(COMPILER, "-std=c++20", pathlib.Path(EXAMPLES) / f"{example}.cpp", "-o", build / example, *flags)
        return build

    def test_shared_by_cmake(self):
        build = self.build_by_cmake("by-cmake")
        self.try_examples(build)
        self.assertIn("libquillon-jet.so", run("readelf", "-d", build / "find_books"))

    def test_static_by_cmake(self):
        build = self.build_by_cmake("by-cmake-static", "-DSTATIC=ON")
        self.assertNotIn("libquillon-jet", run("readelf", "-d", build / "find_books"))
        self.try_examples(build)

    def test_shared_by_pkg_config(self):
        self.try_examples(self.build_by_pkg_config("by-pkg-config"))

    def test_static_by_pkg_config(self):
        link = self.root / "static-only"
        link.mkdir()
        (link / "libquillon-jet.a").symlink_to(self.libraries / "libquillon-jet.a")
        build = self.root / "by-pkg-config-static"
        build.mkdir()
        flags = run("pkg-config", "--cflags", "--libs", "--static", "quillon-jet", env=self.searching).split()
        run(COMPILER, "-std=c++20", pathlib.Path(EXAMPLES) / "read_schema.cpp", "-o", build / "read_schema",
            f"-L{link}", *flags)
        self.assertNotIn("libquillon-jet", run("readelf", "-d", build / "read_schema"))

    def test_shows_its_own_namespace_alone(self):
        symbols = run("nm", "-DC", "--defined-only", self.libraries / "libquillon-jet.so")
        foreign = [line for line in symbols.splitlines()
                   if not re.search(r" (\S+ for )?jet::|QUILLON_JET_1", line)
                   or re.search(r"jet::(storage|engine|dialect|verify)::\S*\(", line.split("(")[0] + "(")]
        self.assertEqual(foreign, [])
        self.assertRegex(symbols, r"jet::Database::Open\(.*@@QUILLON_JET_1")

    def test_has_public_headers_alone(self):
        headers = [path.name for path in (self.prefix / "include" / "quillon-jet").rglob("*.h")]
        self.assertIn("database.h", headers)
        self.assertNotIn("pager.h", headers)
        text = "".join(f"#include <jet/{name}>\n" for name in sorted(headers))
        run(COMPILER, "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only", "-x", "c++", "-",
            f"-I{self.prefix}/include/quillon-jet", input=text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
