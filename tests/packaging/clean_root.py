"""A folder that dpkg takes for a system of its own, with nothing in it but what packages need."""

import os
import re
import subprocess
from pathlib import Path

TIME_LIMIT = 600
STATUS = Path("/var/lib/dpkg/status")


class Failed(Exception):
    """What was expected did not come true; the text says what."""


def call(*command, **options):
    """Runs a command; its output and errors in one text."""
    done = subprocess.run([str(word) for word in command], text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT,
                          stdin=subprocess.DEVNULL, **options)
    if done.returncode != 0:
        raise Failed(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stdout}")
    return done.stdout


def stanzas():
    """Of each installed package, by its name: what dpkg knows of it."""
    known = {}
    for stanza in STATUS.read_text(encoding="utf-8").split("\n\n"):
        name = re.search(r"^Package: (.*)$", stanza, re.MULTILINE)
        if name and "\nStatus: install ok installed\n" in stanza:
            known[name.group(1)] = stanza
    return known


def needed_by(stanza):
    for field in re.findall(r"^(?:Pre-)?Depends: (.*)$", stanza, re.MULTILINE):
        for choice in re.split(r"[,|]", field):
            yield re.split(r"[ (:]", choice.strip())[0]


def closure(names, known):
    """These packages and all that they need, as far as they are installed here."""
    found, waiting = {}, list(names)
    provided = {}
    for name, stanza in known.items():
        for field in re.findall(r"^Provides: (.*)$", stanza, re.MULTILINE):
            for one in field.split(","):
                provided.setdefault(re.split(r"[ (]", one.strip())[0], name)
    while waiting:
        name = waiting.pop()
        name = name if name in known else provided.get(name)
        if name is None or name in found:
            continue
        found[name] = known[name]
        waiting.extend(needed_by(known[name]))
    return found


class CleanRoot:
    """Packages go in and out by dpkg. Its database has those that they depend on, as they are
    installed on this system: so what a package needs but does not name, or names but Debian does
    not have, keeps it from being installed."""

    def __init__(self, folder, packages):
        self.folder = Path(folder)
        database = self.folder / "var/lib/dpkg"
        for name in ("info", "updates", "triggers"):
            (database / name).mkdir(parents=True)
        fields = "\n".join(call("dpkg-deb", "-f", package, "Depends") for package in packages)
        needed = closure(needed_by("Depends: " + fields.replace("\n", ", ")), stanzas())
        # What maintainer scripts would use is not there, and so are no triggers.
        (database / "status").write_text("\n\n".join(needed.values()) + "\n", encoding="utf-8")
        (database / "available").write_text("")
        for name, stanza in needed.items():
            architecture = re.search(r"^Architecture: (.*)$", stanza, re.MULTILINE).group(1)
            same = "\nMulti-Arch: same\n" in stanza
            (database / "info" / (f"{name}:{architecture}.list" if same else f"{name}.list")
             ).write_text("/.\n")

    def dpkg(self, *arguments):
        # Some systems are set up to leave manual pages and documents out.
        command = ["dpkg", "--log=/dev/null", "--path-include=*", f"--root={self.folder}", *arguments]
        if os.geteuid() != 0:
            command = ["fakeroot", *command]
        path = os.environ.get("PATH", "") + ":/usr/local/sbin:/usr/sbin:/sbin"
        return call(*command, env=dict(os.environ, PATH=path, DPKG_COLORS="never"))

    def files(self):
        """All that is there, without what dpkg rewrites each time."""
        rewritten = re.compile(r"var/lib/dpkg(/(status|status-old|available|lock.*|triggers/.*"
                               r"|diversions.*|statoverride.*|info/format))?$|var(/(log|cache).*)?$")
        entries = (str(path.relative_to(self.folder)) for path in self.folder.rglob("*"))
        return sorted(entry for entry in entries if not rewritten.match(entry))
