"""The points at which a run is disturbed: each counted call, with each thing that can happen there."""

import random
import re
from dataclasses import dataclass

READ_ERRORS = ("EIO", "EACCES", "ESTALE")
CHANGE_ERRORS = ("EIO", "ENOSPC", "EACCES")
# Calls that can move a part of what they are asked for.
READING_PARTS = ("read", "pread", "pread64")
WRITING_PARTS = ("write", "pwrite", "pwrite64", "copy_file_range")
LISTING = ("readdir", "readdir64")
ENTRY_CALLS = ("open", "open64", "openat", "openat64", "stat", "stat64", "lstat", "lstat64", "fstatat",
               "fstatat64", "statx")
KILLS = ("kill", "torn", "cut")


@dataclass(frozen=True)
class Call:
    """A line of the preloaded library's record."""
    kind: str
    number: int
    name: str
    path: str


@dataclass(frozen=True)
class Point:
    kind: str
    action: str
    number: int
    call: str
    path: str

    def __str__(self):
        return f"{self.kind}:{self.action}:{self.number}"

    @property
    def kills(self):
        return self.action in KILLS

    @property
    def place(self):
        """What kind of path it is: the same for all songs, all lists and so on."""
        return place_of(self.path.split(" -> ")[0])


def place_of(path):
    path = re.sub(r"\.quillon-[-\d]+\.tmp", "TEMPORARY", path)
    path = re.sub(r"_Copy Dated_\w+?_[AP]M_", "_BACKUP", path)
    top, _, rest = path.partition("/")
    parts = rest.split("/")
    if top == "host" and len(parts) == 1:
        return path
    return "/".join([top, parts[0], *("*" + name[name.rfind("."):] * ("." in name)
                                      for name in parts[1:])])


def calls_in(record, folder):
    """The calls of a record, by paths below the folder."""
    calls = []
    for line in record.read_text("utf-8", "replace").splitlines():
        kind, number, name, path = line.split("\t", 3)
        calls.append(Call(kind, int(number), name, path.replace(f"{folder}/", "")))
    return calls


def listed_just_now(calls):
    """Numbers of the reading calls on an entry of a folder that is still being listed."""
    found, open_listings = set(), {}
    for call in calls:
        parent, _, name = call.path.rpartition("/")
        if call.name in LISTING:
            open_listings.setdefault(parent, set()).add(name)
        elif call.name == "closedir":
            open_listings.pop(call.path, None)
        elif call.kind == "reading" and call.name in ENTRY_CALLS:
            if name in open_listings.get(parent, ()):
                found.add(call.number)
    return found


def points_of(calls):
    """Every point of a run with these calls."""
    vanishing = listed_just_now(calls)
    for call in calls:
        if call.kind == "uncounted":
            continue
        if call.kind == "reading":
            actions = list(READ_ERRORS)
            if call.name in LISTING or call.number in vanishing:
                actions.append("ENOENT")
            if call.name in READING_PARTS:
                actions.append("short")
        else:
            actions = [*CHANGE_ERRORS, "kill", "cut", "abort"]
            if call.name in WRITING_PARTS:
                actions += ["short", "torn"]
        for action in actions:
            yield Point(call.kind, action, call.number, call.name, call.path)


def chosen(points, count, seed):
    """A selection that does not vary: in turn one point of each combination of action, call and place,
    rare ones first."""
    dice = random.Random(seed)
    groups = {}
    for point in points:
        groups.setdefault((point.action, point.call, point.place), []).append(point)
    queues = [groups[key] for key in sorted(groups)]
    for queue in queues:
        dice.shuffle(queue)
    dice.shuffle(queues)
    selection = []
    while len(selection) < count and any(queues):
        selection += [queue.pop() for queue in queues if queue]
    return selection[:count]
