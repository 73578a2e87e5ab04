"""What a run or an undo waits for before its journal says that it is done."""

import re
from pathlib import Path

from points import WRITING_PARTS

RENAMING = ("rename", "renameat", "renameat2", "link", "linkat", "unlink", "unlinkat", "remove")
OF_THE_PROGRAM = ("host/jukebox", "host/Changes/", "host/Reports/", "host/host.log")


def is_of_journal(call):
    return call.name == "write" and re.fullmatch(r"host/Changes/[^/]*\.jsonl", call.path)


def not_waited_for(calls):
    """A call that gave or took a name, or wrote into a song in place, which a power cut may undo when
    the journal says that all is done; None where there is none."""
    changing = [call for call in calls if call.kind == "changing"]
    end = max(place for place, call in enumerate(changing) if is_of_journal(call))
    waiting = {}
    for call in changing[:end]:
        if call.name == "syncfs":
            waiting.clear()
        elif call.name in ("fsync", "fdatasync"):
            waiting.pop(call.path, None)
        elif call.path.startswith(OF_THE_PROGRAM):
            continue
        elif call.name in RENAMING:
            waiting[str(Path(call.path.split(" -> ")[-1]).parent)] = call
        elif call.name in WRITING_PARTS and call.path.endswith(".mp3"):
            waiting[call.path] = call
    return next(iter(waiting.values()), None)
