"""What a preview says that the next run will do, and what the run then does."""

import json
import os
import re
import stat
from datetime import datetime

from processes import Failed

# An hour, in days: what a run dates by its own time.
JUST_NOW = 1 / 24
# Chosen anew by each run.
RANDOM_FIELDS = {"Random"}


def everything(folder):
    """All that can be seen of what is in a folder: kinds, content, times, owners."""
    seen = {}
    for place, folders, files in os.walk(folder):
        for path in [place, *(os.path.join(place, name) for name in folders + files)]:
            facts = os.lstat(path)
            content = None
            if stat.S_ISREG(facts.st_mode) and os.access(path, os.R_OK):
                with open(path, "rb") as stream:
                    content = stream.read()
            seen[path] = (facts.st_mode, facts.st_ino, facts.st_size, facts.st_mtime_ns,
                          facts.st_ctime_ns, facts.st_uid, content)
    return seen


def days_now():
    return (datetime.now() - datetime(1899, 12, 30)).total_seconds() / 86400


def neutral(stage, value):
    """Without what is another in each run: its time, its stamps."""
    if isinstance(value, dict):
        if "days" in value:
            return "NOW" if abs(value["days"] - days_now()) < JUST_NOW else value["days"]
        return {name: neutral(stage, part) for name, part in value.items()
                if name not in RANDOM_FIELDS}
    if isinstance(value, str):
        text = re.sub(r"\bChanges([/\\])[-_\d]{19,}", r"Changes\1STAMP", stage.neutral(value))
        # Copies of one second have a number, which depends on when the second began.
        return re.sub(r"Dated_STAMP_\d+_", "Dated_STAMP_", text)
    return value


def is_report(record):
    """The list of differences, and what is noted of missing music and of sounds: their lines have the
    time of the run, or of the rows that it adds."""
    return record.get("path", "").endswith(
        ("QuillonReconcile.csv", ".mdb.missing", ".mdb.sounds"))


def deeds(stage, records):
    """Rows and files of records, in their order."""
    lines = []
    for record in records:
        if record["record"] not in ("row", "file", "failed"):
            continue
        if is_report(record):
            record = {"record": "file", "change": record["change"], "path": record["path"]}
        lines.append(json.dumps(neutral(stage, record), sort_keys=True))
    return lines


class Announcement:
    """Made right before a run: the preview, which must not change anything."""

    def __init__(self, stage, arguments, unprivileged):
        known = [word for word in arguments if word == "--allow-removals"]
        before = everything(stage.work)
        self.status, output, errors = stage.call(
            "preview", "--host", str(stage.host), "--json", *known, unprivileged=unprivileged)
        after = everything(stage.work)
        if after != before:
            changed = [path for path in before.keys() | after.keys()
                       if before.get(path) != after.get(path)]
            raise Failed("the preview changed " + ", ".join(sorted(changed)))
        self.errors = errors
        self.records = [json.loads(line) for line in output.splitlines()]
        self.journals = self.journals_of(stage)
        if self.status not in (0, 1, 2):
            raise Failed(f"the preview ended with {self.status}: {errors}")

    @staticmethod
    def journals_of(stage):
        return set((stage.host / "Changes").glob("*.jsonl"))

    def log(self, stage):
        return [stage.neutral(record["text"]) for record in self.records
                if record["record"] == "log"]

    def confirm(self, stage, status, log, compare):
        """The run ended with this status and wrote this into the log."""
        could = self.status != 2
        # That others have the database, or that the first copies cannot be made, only a run finds
        # out: it does not begin then.
        refused = any("in use by" in line or "nothing was changed" in line for line in log)
        if status == 2 and could and refused:
            return
        compare("whether the preview could tell", [str(status not in (2,))], [str(could)])
        if not self.records:
            return
        compare("log that the preview announced",
                [line for line in log if " is kept as " not in line], self.log(stage))
        new = self.journals_of(stage) - self.journals
        if len(new) != 1:
            raise Failed(f"the run has left {len(new)} journals")
        with open(new.pop(), encoding="utf-8") as stream:
            did = deeds(stage, [json.loads(line) for line in stream])
        announced = deeds(stage, self.records)
        compare("what the preview announced", did, announced)
        no_change = ("_Copy Dated_", "QuillonReconcile", "SpinnerID3Differences", "Data", "data")
        if could and self.status == 0 and not all(any(word in line for word in no_change)
                                                   for line in did):
            raise Failed("the preview said that nothing would change")
