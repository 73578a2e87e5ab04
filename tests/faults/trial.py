"""One disturbed run after another, each on a fresh copy of the same library."""

import shutil
from dataclasses import dataclass, field, replace
from pathlib import Path

import modes
import points
import rules
from library import Library
from looking import Sight, differences, faults_of, shown
from rules import Breach
from stage import Failed
from waiting import not_waited_for

# The time that runs are told: a minute for each, in UTC.
FIRST_TIME, BETWEEN = 1935846000, 60
FURTHER_RUNS = 2
# How often a point is tried that a run does not come to.
TRIES = 3


@dataclass
class Baseline:
    """A mode's library before the run, and what runs make of it that nothing disturbs."""
    mode: str
    library: Library
    before: Sight = None
    undisturbed: list = field(default_factory=list)
    calls: list = field(default_factory=list)
    originals: dict = field(default_factory=dict)
    backups: set = field(default_factory=set)


@dataclass(frozen=True)
class Trial:
    """What came of a point."""
    mode: str
    point: points.Point
    breaches: tuple
    status: int = None
    reached: bool = True
    tries: int = 1


def environment(folder, run, preload=None, **fault):
    variables = {"TZ": "UTC"}
    if preload:
        variables |= {"LD_PRELOAD": str(preload), "QUILLON_FAULT_FOLDER": str(folder),
                      "QUILLON_FAULT_TIME": str(FIRST_TIME + run * BETWEEN)}
        variables |= {f"QUILLON_FAULT_{key.upper()}": str(value) for key, value in fault.items()}
    return variables


def told_since(library, start, output, errors):
    log = library.log.read_text("utf-8", "replace")[start:] if library.log.exists() else ""
    return f"{log}\n{output}\n{errors}"


def last_line(output):
    return (output.strip().splitlines() or ["nothing was told"])[-1]


class Workshop:
    """Makes baselines and carries out trials in a folder of its own."""

    def __init__(self, program, preload, folder):
        self.program = program
        self.preload = preload
        self.folder = Path(folder)

    def baseline(self, mode, arrange=lambda library: None):
        """A mode's library, arranged further, and its undisturbed runs."""
        library = modes.prepare(mode, self.folder / mode / "before", self.program)
        arrange(library)
        baseline = Baseline(mode, library, Sight(library))
        baseline.originals = {path.name: rules.content_of(path)
                              for path in (library.database, library.lists, library.host / "M3u")}
        copy = library.copy_to(self.folder / mode / "trial")
        record = self.folder / mode / "record"
        record.touch()
        for number in range(FURTHER_RUNS + 1):
            asked = {"record": record} if number == 0 else {}
            status, output, errors = copy.run(environment(copy.folder, number, self.preload, **asked))
            if status != 0:
                raise Failed(f"{mode}: a run that nothing disturbs ends with {status}:\n{output}{errors}")
            baseline.undisturbed.append(Sight(copy, baseline.before.tables))
            if number == 0:
                baseline.calls = points.calls_in(record, copy.folder)
                baseline.backups = set(rules.backups_of(copy))
        shutil.rmtree(copy.folder)
        self.confirm(baseline)
        return baseline

    def confirm(self, baseline):
        """A mode that does nothing would prove nothing."""
        if self.preload and not baseline.calls:
            raise Failed(f"{baseline.mode}: the preloaded library counted no call")
        if self.preload and (call := not_waited_for(baseline.calls)) is not None:
            raise Failed(f"{baseline.mode}: a run has ended before this is on the disk: {call}")
        first, *_, last = baseline.undisturbed
        if baseline.mode != "m3u-to-pla" and not differences(baseline.before, first):
            raise Failed(f"{baseline.mode}: a run changes nothing")
        if differences(baseline.undisturbed[-2], last):
            raise Failed(f"{baseline.mode}: runs do not come to an end")
        for breach in rules.lost_songs(baseline.before, first, []):
            if breach.rule == "song lost":
                raise Failed(f"{baseline.mode}: an undisturbed run: {breach.text}")

    def trial(self, baseline, point, keep=False):
        """Disturbs a run at this point, looks, and lets further runs put it right. A run that ends well
        before it comes to the point has made a call fewer than the one that was counted."""
        for number in range(1, TRIES + 1):
            trial = self.tried_once(baseline, point, keep)
            if trial.reached or trial.breaches or keep:
                break
        return replace(trial, tries=number)

    def tried_once(self, baseline, point, keep):
        folder = self.folder / baseline.mode / "trial"
        library = baseline.library.copy_to(folder)
        try:
            return self.judged(baseline, point, library)
        finally:
            if not keep:
                shutil.rmtree(folder)
                shutil.rmtree(self.folder / baseline.mode / "reopened", ignore_errors=True)

    def judged(self, baseline, point, library):
        record = library.folder.parent / "record"
        record.unlink(missing_ok=True)
        try:
            status, output, errors = library.run(environment(
                library.folder, 0, self.preload, record=record, calls=point.kind, at=point.number,
                do=point.action))
        except Failed as failure:
            return Trial(baseline.mode, point, (Breach("hang", str(failure)),))
        if not record.exists():
            ended = f"the status is {status}: {shown((errors + output).strip())}"
            breaches = (Breach("ended by itself", ended),) if status != 0 else ()
            return Trial(baseline.mode, point, breaches, status, reached=False)
        met = points.calls_in(record, library.folder)[0]
        point = points.Point(point.kind, point.action, point.number, met.name, met.path)
        if status < 0 and not (point.kills and status == -9):
            told = f"ended by signal {-status}: {output}{errors}"
            return Trial(baseline.mode, point, (Breach("crash", told),), status)
        told = told_since(library, 0, output, errors)
        try:
            breaches = list(self.aftermath(baseline, point, library, status, told))
            breaches += self.repaired(baseline, library)
        except (Failed, OSError, ValueError, KeyError) as failure:
            breaches = [Breach("unreadable", f"{type(failure).__name__}: {failure}")]
        return Trial(baseline.mode, point, tuple(breaches), status)

    def aftermath(self, baseline, point, library, status, told):
        """What holds as soon as the disturbed run is over."""
        seen = self.reopened(library) if point.kills else library
        faults = faults_of(seen.database, self.program)
        if faults:
            yield Breach("database", faults)
        now = Sight(seen, baseline.before.tables)
        yield from rules.losses(baseline.before, now, baseline.undisturbed,
                                point.path if point.kills else None)
        changed = differences(baseline.before, now)
        yield from rules.broken_backups(rules.backups_of(library), baseline.originals,
                                        baseline.backups, changed)
        yield from rules.unjournalled(baseline.before, now, library, point.action == "cut")
        if point.kills:
            return
        if not point.path.startswith("host/jukebox."):
            yield from rules.left_marked(baseline.before, now, baseline.undisturbed)
        yield from rules.wrong_status(status, point, baseline.before, now, baseline.undisturbed, told)

    def reopened(self, library):
        """A copy in which a database left by a killed run has been opened for writing once."""
        copy = library.copy_to(library.folder.parent / "reopened")
        copy.execute("DELETE * FROM SpinnerID3Differences WHERE Field = 'none'")
        return copy

    def repaired(self, baseline, library, first=1):
        """Further runs, which nothing disturbs, come to where undisturbed ones come to."""
        told = ""
        for number in range(first, first + FURTHER_RUNS):
            start = len(library.log.read_text("utf-8", "replace")) if library.log.exists() else 0
            status, output, errors = library.run(environment(library.folder, number, self.preload))
            told = told_since(library, start, output, errors)
            now = Sight(library, baseline.before.tables)
            if status == 0 and not differences(baseline.undisturbed[-1], now):
                break
        if status != 0:
            yield Breach("not repaired", f"a further run ends with {status}: {shown(told.strip())}")
        missing = differences(baseline.undisturbed[-1], now)
        if missing:
            yield Breach("not repaired", f"after {FURTHER_RUNS} further runs: {missing}")
        if now.leftovers():
            yield Breach("leftovers", f"after all runs there is {now.leftovers()}")
        faults = faults_of(library.database, self.program)
        if faults:
            yield Breach("database", f"after all runs: {faults}")
