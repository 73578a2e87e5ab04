#!/usr/bin/env python3
"""every_call.py PROGRAM LIBRARY   demands that the preloaded library stands in front of every call that
the program, or the C++ library for it, could read or change files by."""

import re
import subprocess
import sys
from pathlib import Path

# What the C library has for files and folders. Calls on open streams (fread, fwrite) are not part of
# it: they reach the system from inside the C library, where nothing can stand in front of them.
FILE_CALLS = re.compile(
    r"(open|creat|fopen|openat|open_2|openat_2|freopen|opendir|fdopendir|scandir|nftw|ftw|fts_open|glob"
    r"|readdir|readdir_r|[fl]?stat|fstatat|statx|access|eaccess|euidaccess|faccessat|p?readv?2?"
    r"|p?writev?2?|readlink|readlinkat|realpath|canonicalize_file_name|rename|renameat|renameat2|link"
    r"|linkat|symlink|symlinkat|unlink|unlinkat|remove|rmdir|mkdir|mkdirat|mknod|mkfifo|l?f?chmod"
    r"|fchmodat|[fl]?chown|fchownat|f?truncate|posix_fallocate|fallocate|copy_file_range|sendfile"
    r"|f(data)?sync|syncfs|sync_file_range|utimes?|futimens|utimensat|futimes|[fl]?(set|remove)xattr|flock"
    r"|lockf|fcntl|mmap|splice|tee|mkstemps?|mkostemps?|mkdtemp|tmpfile)(64)?")


def symbols(file, kind):
    listed = subprocess.run(["nm", "-D", kind, file], check=True, capture_output=True, text=True)
    names = (line.split()[-1].split("@")[0] for line in listed.stdout.splitlines())
    return {re.sub(r"^__", "", name).removesuffix("_chk") for name in names}


def cpp_library(program):
    listed = subprocess.run(["ldd", program], check=True, capture_output=True, text=True)
    return Path(re.search(r"libstdc\+\+\S* => (\S+)", listed.stdout)[1])


def main():
    program, library = sys.argv[1:]
    covered = symbols(library, "--defined-only")
    wanted = {name for file in (program, cpp_library(program))
              for name in symbols(file, "--undefined-only") if FILE_CALLS.fullmatch(name)}
    missing = sorted(wanted - covered)
    print(f"{len(wanted)} calls of the program on files, {len(missing)} of them pass uncounted"
          + "".join(f"\n  {name}" for name in missing))
    return 1 if missing or not wanted else 0


if __name__ == "__main__":
    sys.exit(main())
