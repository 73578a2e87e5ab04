"""Reads a scenario: one text file with the story in words, then sections for each run of the program.
README.md tells what may stand in them."""

import re
from pathlib import Path

from stage import TABLES

SECTIONS = {"settings", "host settings", "account", "arguments", "check",
            "before/files", "before/rows", "before/commands", "before/unreadable",
            "after/exit status", "after/log", "after/log has", "after/output", "after/errors",
            "after/unchanged", "after/files", "after/contents", "after/tags", "after/removed files",
            "after/web", "after/reconciliation file",
            *(f"after/rows of {table}" for table in TABLES)}
WORDS = {"account": {"another"}, "after/unchanged": {"rows", "database file", "music", "web"}}
HEADING = re.compile(r"== (.+) ==")
BYTE = re.compile(rb"\\x([0-9A-F]{2})")


class Misread(Exception):
    """A scenario that cannot be played as it is written; the text says where and why."""


class Section:
    """What stands below one heading."""

    def __init__(self, place):
        self.place = place
        self.raw = []

    def lines(self):
        """Lines that say something; "#" in the first column begins a remark."""
        return [line for line in self.raw if line.strip() and not line.startswith("#")]

    def text(self):
        """All lines as they are, without blank ones at either end."""
        return "\n".join(self.raw).strip("\n") + "\n"


class Run:
    """The sections that set up one run of the program and say what it makes of that."""

    def __init__(self, number):
        self.number = number
        self.sections = {}

    def __contains__(self, name):
        return name in self.sections

    def lines(self, name):
        return self.sections[name].lines() if name in self else []

    def place(self, name):
        return self.sections[name].place if name in self else f"run {self.number}"

    def tables(self):
        """Names of the tables whose rows are listed."""
        return [table for table in TABLES if f"after/rows of {table}" in self]


def read(file):
    """All runs of a scenario, in order."""
    runs = [Run(1)]
    section = Section(f"{Path(file).name}:1")
    for number, line in enumerate(Path(file).read_text("utf-8").splitlines(), 1):
        heading = HEADING.fullmatch(line)
        place = f"{Path(file).name}:{number}"
        if not heading:
            section.raw.append(line)
        elif heading[1] == f"run {runs[-1].number + 1}":
            runs.append(Run(runs[-1].number + 1))
            section = Section(place)
        else:
            section = Section(place)
            add(runs[-1], heading[1], section)
    for run in runs:
        confirm(run, file)
    return runs


def add(run, name, section):
    if name not in SECTIONS:
        raise Misread(f"{section.place}: there is no section \"{name}\"; README.md lists them")
    if name in run:
        raise Misread(f"{section.place}: run {run.number} has another section \"{name}\"")
    run.sections[name] = section


def confirm(run, file):
    """A run that demands nothing, or a word that means nothing, is a mistake."""
    if not any(name.startswith("after/") for name in run.sections):
        raise Misread(f"{Path(file).name}: run {run.number} has no section \"after/...\"")
    for name, known in WORDS.items():
        for line in run.lines(name):
            if line not in known:
                raise Misread(f"{run.place(name)}: \"{line}\" is none of {', '.join(sorted(known))}")


def bytes_of(text, encoding):
    """What is written as \\xHH is one byte; all else has that encoding."""
    return BYTE.sub(lambda match: bytes([int(match[1], 16)]), text.encode(encoding))


def lines_content(text):
    """The bytes of a text file from its written form: lines with "; " between them; a ";" at the end
    stands for the last line end."""
    ended = text.endswith(";")
    return bytes_of(text.removesuffix(";").replace("; ", "\r\n") + ("\r\n" if ended else ""), "cp1252")


def written_lines(content):
    """The written form of a text file, a piece for each line, so that differences can be shown."""
    *ended, last = content.split(b"\r\n")
    return [f"{written_bytes(line)};" for line in ended] + ([written_bytes(last)] if last else [])


def written_bytes(content):
    """Windows-1252 text, with blanks at its end and what is no letter or sign written as \\xHH."""
    text = content.decode("cp1252", "surrogateescape")
    return re.sub(r"[\x00-\x1f\x7f\udc80-\udcff]| +$", escaped, text)


def escaped(match):
    return "".join(f"\\x{ord(character) & 0xFF:02X}" for character in match[0])
