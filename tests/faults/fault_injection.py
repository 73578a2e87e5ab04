#!/usr/bin/env python3
"""fault_injection.py [options] PROGRAM   disturbs small runs of every mode at single calls of the
system and looks what was lost. README.md tells how it is read.

  --all            every point; otherwise a selection that is the same each time
  --count N        so many points of each mode (default 90)
  --mode MODE      this mode only; may be repeated
  --point P        this point only, as a report names it: KIND:ACTION:NUMBER
  --keep           with --point: leaves the library as it is at the end, and says where
  --jobs N         so many processes (default 1)
  --preload FILE   the preloaded library (default: beside the program's build)
"""

import multiprocessing
import shutil
import signal
import sys
import time
import traceback
from collections import Counter

import modes
import points
from library import temporary_folder
from options import Options
from stage import Failed
from trial import Workshop

PROGRESS = 1000
SEED = "the same each time"


def arguments():
    options = Options(__doc__, modes.MODES, count=90)
    options.add_argument("--jobs", type=int, default=1)
    return options.given()


def points_to_try(given, baseline):
    every = list(points.points_of(baseline.calls))
    if given.point:
        found = [point for point in every if str(point) == given.point]
        if not found:
            raise Failed(f"{baseline.mode} has no point {given.point}")
        return found
    return every if given.all else points.chosen(every, given.count, f"{SEED} {baseline.mode}")


def carried_out(given, workshop, mode, share, shares):
    """The trials of one process: its share of a mode's points."""
    baseline = workshop.baseline(mode)
    for point in points_to_try(given, baseline)[share::shares]:
        yield workshop.trial(baseline, point, given.keep)


def work(given, folder, jobs, results):
    """A process: takes shares of modes until none is left."""
    signal.signal(signal.SIGTERM, signal.SIG_DFL)
    workshop = Workshop(given.program, given.preload, folder)
    while (job := jobs.get()) is not None:
        shutil.rmtree(folder / job[0], ignore_errors=True)
        try:
            for trial in carried_out(given, workshop, *job):
                results.put(trial)
        except Failed as failure:
            results.put(f"{job[0]}: {failure}")
        except Exception:  # whatever it is, the others go on and it is told
            results.put(f"{job[0]}: {traceback.format_exc()}")
    results.put(None)


def all_results(given, folder):
    """The trials of all processes as they come, and texts for what could not be tried."""
    jobs, results = multiprocessing.Queue(), multiprocessing.Queue()
    shares = given.jobs if given.jobs > 1 and not given.point else 1
    for mode in given.mode or modes.MODES:
        for share in range(shares):
            jobs.put((mode, share, shares))
    workers = [multiprocessing.Process(target=work,
                                       args=(given, folder / str(number), jobs, results),
                                       daemon=True)
               for number in range(given.jobs)]
    for worker in workers:
        jobs.put(None)
        worker.start()
    running = len(workers)
    while running:
        result = results.get()
        if result is None:
            running -= 1
        else:
            yield result
    for worker in workers:
        worker.join()


def tell(trial):
    point = trial.point
    came = f"status {trial.status}" if trial.reached else "not reached"
    tries = f", tried {trial.tries} times" if trial.tries > 1 else ""
    print(f"{trial.mode} {point}: {point.call} on {point.path}, {came}{tries}")
    for breach in trial.breaches:
        print(f"    {breach.rule}: {breach.text}")
    sys.stdout.flush()


def distinct(trials):
    """The same rule broken at the same call on the same kind of path is one fault."""
    groups = {}
    for trial in trials:
        for breach in trial.breaches:
            key = (breach.rule, trial.point.call, trial.point.place)
            groups.setdefault(key, {})[f"{trial.mode} {trial.point}"] = trial
    print(f"\n{len(groups)} distinct faults:")
    for (rule, call, place), found in sorted(groups.items()):
        actions = ", ".join(sorted({trial.point.action for trial in found.values()}))
        in_modes = ", ".join(sorted({trial.mode for trial in found.values()}))
        print(f"  {rule}: {call} on {place} ({actions}) in {in_modes}: {len(found)} points,"
              f" one is {next(iter(found))}")


def table(trials):
    """Modes x kinds: points tried, and those at which a rule was broken."""
    tried, broken = Counter(), Counter()
    for trial in trials:
        kind = f"{trial.point.kind} {trial.point.action}"
        for key in ((trial.mode, kind), (trial.mode, "all"), ("all", kind), ("all", "all")):
            tried[key] += 1
            broken[key] += bool(trial.breaches)
    rows = [mode for mode in (*modes.MODES, "all") if tried[mode, "all"]]
    columns = sorted({kind for _, kind in tried} - {"all"}) + ["all"]
    width = max(map(len, rows))
    print("\nPoints tried, and behind the slash those at which something was lost or untold:")
    for start in range(0, len(columns), 8):
        part = columns[start:start + 8]
        print("\n" + " " * width + "".join(f"{column.replace('ing', ''):>15}" for column in part))
        for row in rows:
            cells = (f"{tried[row, column]}/{broken[row, column]}" for column in part)
            print(f"{row:<{width}}" + "".join(f"{cell:>15}" for cell in cells))


def main():
    given = arguments()
    # Ended from outside, it takes its processes and libraries along and tells what it has found.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    began = time.monotonic()
    folder = temporary_folder()
    trials, troubles = [], []
    try:
        for result in all_results(given, folder):
            if isinstance(result, str):
                troubles.append(result)
                continue
            trials.append(result)
            if result.breaches or not result.reached or result.tries > 1:
                tell(result)
            if len(trials) % PROGRESS == 0:
                print(f"{len(trials)} points tried", file=sys.stderr, flush=True)
    except KeyboardInterrupt:
        troubles.append("interrupted: not all points were tried")
    finally:
        if given.keep:
            print(f"the libraries are left in {folder}")
        else:
            shutil.rmtree(folder, ignore_errors=True)
    for trouble in troubles:
        print(trouble)
    broken_trials = [trial for trial in trials if trial.breaches]
    unreached = sum(not trial.reached for trial in trials)
    if broken_trials:
        distinct(broken_trials)
    table(trials)
    print(f"\n{len(trials)} points tried in {time.monotonic() - began:.0f} s, {len(broken_trials)} broke a rule,"
          f" {unreached} were not reached")
    return 1 if broken_trials or troubles or unreached or not trials else 0


if __name__ == "__main__":
    sys.exit(main())
