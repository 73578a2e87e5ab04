#!/usr/bin/env python3
"""archive_test.py SOURCES BUILD OBJDUMP   makes the archive for Windows of a build and looks what a user
gets: the files, the terms of the libraries, what the program file says of itself, and whether it works
from where it was unpacked."""

import re
import struct
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TESTS / "outside"), str(TESTS.parent / "demo")]

import sound_files  # noqa: E402
from processes import Failed, WithErrorsInAFile, output_of  # noqa: E402
from readers import checker_at_hand, faults_of  # noqa: E402

ICON, GROUP_ICON, VERSION, MANIFEST = 3, 14, 16, 24
# A program of its own needs no other file than these, which every Windows has.
SYSTEM_LIBRARIES = {"advapi32.dll", "comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
                    "oleaut32.dll", "shell32.dll", "user32.dll"}


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, there is {actual!r}")


class Program:
    """The resources of a program file, by kind; a PE32+ file, as its headers say."""

    def __init__(self, content):
        self.content = content
        start = self.number("<I", 0x3C)
        expect("signature", b"PE\0\0", content[start:start + 4])
        expect("machine", 0x8664, self.number("<H", start + 4))
        sections, optional = self.number("<H", start + 6), self.number("<H", start + 20)
        table = start + 24 + optional
        place = self.number("<I", start + 24 + 112 + 2 * 8)
        for at in range(table, table + 40 * sections, 40):
            address, size, self.raw = (self.number("<I", at + offset) for offset in (12, 16, 20))
            if address <= place < address + size:
                self.address = address
                break
        else:
            raise Failed("the program has no resources")
        self.found = {kind: self.leaves(inner) for kind, inner in self.entries(0)}

    def number(self, form, at):
        return struct.unpack_from(form, self.content, at)[0]

    def entries(self, folder):
        at = self.raw + folder
        count = self.number("<H", at + 12) + self.number("<H", at + 14)
        for entry in range(at + 16, at + 16 + 8 * count, 8):
            yield self.number("<I", entry), self.number("<I", entry + 4)

    def leaves(self, place):
        """Contents of all resources below a place."""
        if place & 0x80000000:
            return [leaf for _, inner in self.entries(place & 0x7FFFFFFF) for leaf in self.leaves(inner)]
        address, size = (self.number("<I", self.raw + place + offset) for offset in (0, 4))
        start = self.raw + address - self.address
        return [self.content[start:start + size]]

    def only(self, kind):
        found = self.found.get(kind, [])
        expect(f"resources of kind {kind}", 1, len(found))
        return found[0]


def version_texts(block):
    """The texts of a version resource, by name."""
    words = block.decode("utf-16-le", "replace")
    return dict(re.findall(r"(\w+)\0+([^\0]+)\0", words))


def confirm_program(content, version):
    program = Program(content)
    # The sizes of the icon that a desktop, a list and a title bar take; 0 stands for 256.
    group = program.only(GROUP_ICON)
    sizes = {group[at] or 256 for at in range(6, len(group), 14)}
    for size in (16, 32, 48, 256):
        if size not in sizes:
            raise Failed(f"the icon has sizes {sorted(sizes)}, not {size}")
    expect("pictures of the icon", len(sizes), len(program.found[ICON]))
    block = program.only(VERSION)
    texts = version_texts(block)
    expect("version", [version, version, "quillon.exe"],
           [texts.get(name) for name in ("FileVersion", "ProductVersion", "OriginalFilename")])
    fixed = block.index(struct.pack("<I", 0xFEEF04BD))
    high, low = struct.unpack_from("<II", block, fixed + 8)
    expect("version as a number", version, f"{high >> 16}.{high & 0xFFFF}.{low >> 16}")
    manifest = program.only(MANIFEST).decode("utf-8")
    for words in (">UTF-8</activeCodePage>", ">true</longPathAware>", ">PerMonitorV2</dpiAwareness>",
                  "Microsoft.Windows.Common-Controls", 'level="asInvoker"'):
        if words not in manifest:
            raise Failed(f"\"{words}\" is not in the manifest")


def confirm_stands_alone(objdump, program):
    told = subprocess.run([objdump, "-p", program], capture_output=True, text=True, check=True).stdout
    libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)", told)}
    expect("libraries that the program needs beside Windows", set(), libraries - SYSTEM_LIBRARIES)
    if not libraries:
        raise Failed("no libraries were found")


def confirm_licences(names):
    licences = {name.split("/")[-1] for name in names if "/licences/" in name}
    for needed in ("sqlite3.txt", "utf8proc.txt", "fmtlib.txt", "taglib.txt", "libcli11-dev.txt",
                   "nlohmann-json3-dev.txt", "libutfcpp-dev.txt", "libz-mingw-w64-dev.txt",
                   "g++-mingw-w64-x86-64-posix.txt", "mingw-w64-x86-64-dev.txt", "LGPL-2.1.txt", "GPL-3.txt"):
        if needed not in licences:
            raise Failed(f"the terms {needed} are not among {sorted(licences)}")


def confirm_works(runner, folder):
    """From an empty shelf to a checked library, with nothing but what was unpacked."""
    def quillon(*arguments):
        return output_of([runner, folder / "quillon.exe", *arguments], folder, kind=WithErrorsInAFile)

    sound_files.write(str(folder / "My Music/Alder/First/01 - Dawn.mp3"), sound_files.silence(0.1), 1500000000)
    quillon("init", "My Shelf", "--music", "My Music")
    told = quillon("run", "--host", "My Shelf", "--view", "plain")
    if "Tracks: 1 added" not in told:
        raise Failed(f"the unpacked program's run says: {told}")
    quillon("check", "--host", "My Shelf")
    told = quillon("run", "--host", "My Shelf", "--view", "plain")
    if "added" in told:
        raise Failed(f"the unpacked program's second run says: {told}")
    databases = list(folder.rglob("*.mdb"))
    if not databases:
        raise Failed("there is no database")
    if checker_at_hand() and (faults := faults_of(databases[0])):
        raise Failed(faults)


def main():
    sources, build, objdump = sys.argv[1:]
    try:
        with tempfile.TemporaryDirectory(prefix="quillon-archive-") as folder:
            archive = output_of([f"{sources}/scripts/make-windows-archive", build, folder]).strip()
            version = re.search(r"quillon-([\d.]+)-windows\.zip$", archive)[1]
            with zipfile.ZipFile(archive) as packed:
                names = packed.namelist()
                packed.extractall(folder)
            top = f"quillon-{version}"
            for name in ("quillon.exe", "copyright.txt", "manual/windows.md", "sample/Quillon.ini",
                         "sample/host.ini"):
                if f"{top}/{name}" not in names:
                    raise Failed(f"{name} is not in the archive")
            confirm_licences(names)
            program = Path(folder) / top / "quillon.exe"
            confirm_program(program.read_bytes(), version)
            confirm_stands_alone(objdump, program)
            confirm_works(f"{sources}/scripts/run-windows-program", program.parent)
            print(f"{len(names)} files and folders, {program.stat().st_size} bytes of program")
    except Failed as failure:
        print(failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
