"""What must hold of a library after a run was disturbed. Each rule yields a Breach for what it finds:
the rule's short name, and in words what was lost."""

import json
import re
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

from looking import HEAD, PRECIOUS, differences, is_backup, shown
from points import LISTING

PAGES = "AlbumPicker"
ABORTED = 3
NOTHING_RAN = 2
TOP = ("disk", "host")


@dataclass(frozen=True)
class Breach:
    rule: str
    text: str


def lost_rows(before, now, settled):
    """Rows that an undisturbed run keeps are there, with all that the household has told."""
    for table, rows in before.tables.items():
        kept = settled.tables[table]
        for key, row in rows.items():
            if "ID" not in row or key not in kept:
                continue
            name = row.get("SoundFile") or row.get("Title") or row.get("Song") or row.get("Artist")
            if key not in now.tables[table]:
                yield Breach("row lost", f"the row of {table} of {name} is gone")
                continue
            for field in PRECIOUS:
                if field in row and now.tables[table][key][field] not in (row[field],
                                                                          kept[key][field]):
                    yield Breach("value lost", f"{table} of {name}: {field} was {row[field]},"
                                               f" is {now.tables[table][key][field]}")


def lost_lists(before, now, undisturbed):
    """Lists are there and name something, those made by the program, too."""
    for name, content in before.contents.items():
        if not all(name in sight.contents for sight in undisturbed):
            continue
        if name not in now.contents:
            yield Breach("list lost", f"the list {name} is gone")
        elif content.count(b"\n") > 1 and now.contents[name].count(b"\n") <= 1:
            yield Breach("list lost", f"the list {name} is empty")


def lost_songs(before, now, undisturbed, being_written=None):
    """Every song is still to be heard somewhere, with a tag and a time that it had or was to have.
    A kill may leave the file `being_written` with the time of that moment."""
    had, has = Counter(before.songs.values()), Counter(now.songs.values())
    for song, count in had.items():
        least = min([count] + [Counter(sight.songs.values())[song] for sight in undisturbed])
        if has[song] < least:
            yield Breach("song lost", f"{song} was there {count} times, is there {has[song]} times")
    states = [sight.parts["file"][name].partition(HEAD)
              for sight in (before, *undisturbed) for name in sight.songs]
    ends, heads = {end for end, *_ in states}, {head for *_, head in states}
    for name in now.songs:
        # One tag may be written, and the other not yet.
        end, _, head = now.parts["file"][name].partition(HEAD)
        if (end not in ends or head not in heads) and name != being_written:
            yield Breach("song damaged", f"{name} holds {now.parts['file'][name]}")


def lost_files(before, now, undisturbed, killed):
    """Covers and lists of other players are what they were or what they were to become. Pages are
    there; a kill may leave their whole folder under the name that the next run takes it back from."""
    for name, content in before.parts["file"].items():
        if name in before.songs or not all(name in sight.parts["file"] for sight in undisturbed):
            continue
        states = {content, *(sight.parts["file"][name] for sight in undisturbed)}
        aside = name.replace(f"/{PAGES}/", f"/{PAGES}.old/")
        if name not in now.parts["file"]:
            if not (killed and now.parts["file"].get(aside) == content):
                yield Breach("file lost", f"{name} is gone")
        elif now.parts["file"][name] not in states and f"/{PAGES}/" not in name:
            yield Breach("file damaged", f"{name} holds {now.parts['file'][name]}")


def left_marked(before, now, undisturbed=()):
    """Numbers that a run sets aside are back when it has come to its end, but those of songs that wait
    for their files, as undisturbed runs leave them."""
    for table, field in (("Albums", "Tracks"), ("Tracks", "Track")):
        for key, row in now.tables[table].items():
            known = [sight.tables[table].get(key, {}).get(field) for sight in (before, *undisturbed)]
            if row[field] == "0" and "0" not in known:
                yield Breach("left marked", f"{table} of {row['Title']}: {field} is 0")


def losses(before, now, undisturbed, being_written=None):
    yield from lost_rows(before, now, undisturbed[-1])
    yield from lost_lists(before, now, undisturbed)
    yield from lost_songs(before, now, undisturbed, being_written)
    yield from lost_files(before, now, undisturbed, being_written is not None)


def content_of(path):
    if not path.is_dir():
        return path.read_bytes()
    return {str(file.relative_to(path)): file.read_bytes() for file in path.rglob("*")
            if file.is_file()}


def backups_of(library):
    """The dated copies: name of the original -> contents of its copies."""
    found = {}
    for folder in (library.host, library.disk):
        for path in folder.iterdir():
            if is_backup(path.relative_to(library.folder)):
                original = path.name.split("_Copy Dated_")[0]
                found.setdefault(original, []).append(content_of(path))
    return found


def broken_backups(made, originals, wanted, changed):
    """A copy that looks like a backup is a whole one, and nothing changes before all are there."""
    for name, copies in made.items():
        if any(copy != originals[name] for copy in copies):
            yield Breach("backup torn", f"the backup of {name} is not what {name} was")
    for name in sorted(wanted - made.keys()):
        if changed:
            yield Breach("no backup", f"there is no backup of {name}, and yet: {changed}")


def names_for(call, path):
    """Words of which one must occur where a path is named: file names, since the program tells of
    Windows paths."""
    words = set()
    # Where an entry cannot be read, nobody knows its name.
    parts = [path, path.rpartition("/")[0]] if call in LISTING else path.split(" -> ")
    for part in filter(None, parts):
        *folders, name = part.split("/")
        parent = folders[-1] if folders else name
        # What is written under a temporary name is told of by the name that it is to have.
        while name.startswith(".quillon-"):
            name, parent = parent, (folders or [""])[-1]
            folders = folders[:-1]
            part = name if name in TOP else part
        if name.startswith("jukebox."):
            words.add("jukebox")
        elif part in TOP:
            words |= {"D:", "H:", name}
        else:
            # Folders of pages are made and replaced as a whole.
            whole = "." not in name or f"/{PAGES}." in part
            words |= {name, parent} if whole else {name}
    return words


def unnamed(point, told):
    """What was left undone is told by an error that names the path."""
    if point.path.endswith("host.log"):
        return
    words = names_for(point.call, point.path)
    if not any(word.lower() in told.lower() for word in words):
        yield Breach("unnamed", f"none of {sorted(words)} is named by: {shown(told.strip())}")


def unjournalled(before, now, library, power_cut=False):
    """What has changed is in a journal, of which only the last line may be cut short. A power cut may
    take lines of what is new and stands for itself."""
    records = []
    for journal in (library.host / "Changes").glob("*.jsonl"):
        *lines, last = journal.read_bytes().split(b"\n")
        if last:
            lines.append(last if last.endswith(b"}") else b'{"record":"cut short"}')
        records += [json.loads(line) for line in lines]
    places = "\n".join(str(record.get(name, "")) for record in records
                       for name in ("path", "target")).lower()
    there, here = before.parts["file"], now.parts["file"]
    for name in sorted(there.keys() | here.keys()):
        # Folders of pages are made and replaced as a whole.
        if power_cut and name not in there:
            continue
        word = PAGES if f"/{PAGES}" in name else re.sub(r" \(\d+\)(?=\.\w+$)", "", Path(name).name)
        if there.get(name) != here.get(name) and word.lower() not in places:
            yield Breach("unjournalled", f"no journal tells of {name}")
    tables = {record["table"] for record in records if record["record"] == "row"}
    for table, rows in before.tables.items():
        if rows != now.tables[table] and table not in tables:
            yield Breach("unjournalled", f"no journal tells of rows of {table}")


def wrong_status(status, point, before, now, undisturbed, told):
    """0 stands for all that an undisturbed run does, 2 for nothing at all."""
    left_undone = differences(undisturbed[0], now)
    if status == 0 and left_undone:
        yield Breach("status 0", f"the status is 0, and yet: {left_undone}")
    elif status == NOTHING_RAN and differences(before, now):
        yield Breach("status 2", f"the status is 2, and yet: {differences(before, now)}")
    elif status not in (0, 1, NOTHING_RAN, *[ABORTED] * (point.action == "abort")):
        yield Breach("odd status", f"the status is {status}: {shown(told)}")
    if status in (1, NOTHING_RAN) and left_undone:
        yield from unnamed(point, told)
