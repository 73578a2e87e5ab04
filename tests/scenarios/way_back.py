#!/usr/bin/env python3
"""way_back.py PROGRAM   what `quillon changes` tells and `quillon undo` does beyond what every scenario
shows: several runs, what was changed since, cut off, edited journals, a database that is open."""

import json
import os
import re
import signal
import sys
import time

from stage import Failed, Stage

import sound_files

FIRST_DAY = 1500000000


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, there is {actual!r}")


def expect_in(text, told):
    if text not in told:
        raise Failed(f"\"{text}\" is not in:\n{told}")


def song(stage, path, **tag):
    name = str(stage.disk / "Music" / path)
    sound_files.write(name, sound_files.silence(0.1) + sound_files.tag(**tag), FIRST_DAY)


def undo(stage, *arguments):
    return stage.call("undo", "--host", str(stage.host), *arguments)


def changes(stage, *arguments):
    return stage.call("changes", "--host", str(stage.host), *arguments)


def runs(stage):
    """All runs as `changes --list --json` tells of them."""
    return [json.loads(line) for line in changes(stage, "--list", "--json")[1].splitlines()]


def titles(stage):
    return sorted(row["Title"] for row in stage.query("SELECT Title FROM Tracks"))


def clean_run(stage):
    status, output, errors = stage.reconcile()
    if status != 0:
        raise Failed(f"run: {status}\n{output}{errors}")


def library(stage):
    """Three runs: an album comes, another one, and a song goes."""
    stage.settings["ID3Reconcile"] = "1"
    stage.write_settings()
    song(stage, "Alder/First/Alder - Dawn.mp3", song="Dawn", artist="Alder", album="First", track=1)
    clean_run(stage)
    song(stage, "Birch/Second/wrong name.mp3", song="Rain", artist="Birch", album="Second", track=1)
    clean_run(stage)


def several_runs(program):
    with Stage(program) as stage:
        expect("without a run", (2, ""), undo(stage, "--yes")[:2])
        library(stage)
        expect("titles", ["Dawn", "Rain"], titles(stage))
        first = runs(stage)[0]["run"]
        status, output, _ = undo(stage, "--yes")
        expect("undo", 0, status)
        expect_in("quillon undo ", output)
        expect("titles", ["Dawn"], titles(stage))
        expect("undone by", True, "undoneBy" in runs(stage)[1])
        clean_run(stage)
        expect("undo of what a run has found again", 0, undo(stage, "--yes")[0])
        status, output, _ = undo(stage, "--yes")
        expect("second undo", 0, status)
        # Those that have been taken back already are not.
        expect("runs", [first], re.findall(r"(?m)^  ([-\d_]+)  Reconcile", output))
        expect_in(f"Undo: run {first} is taken back;", stage.log.read_text("utf-8"))
        expect("titles", [], titles(stage))
        expect("nothing left", 2, undo(stage, "--yes")[0])
        # Both undos are taken back at once, then both runs.
        expect("undo of undos", 0, undo(stage, runs(stage)[2]["run"], "--yes")[0])
        expect("titles", ["Dawn", "Rain"], titles(stage))
        expect("undo of both", 0, undo(stage, first, "--yes")[0])
        expect("titles", [], titles(stage))
        expect("unknown run", 2, undo(stage, "2001-01-01_00-00-00", "--yes")[0])


def one_of_two(program):
    """Both runs are taken back, one by one or at once, and both are brought back; then the last one alone
    is taken back: what the first one added, and was played since, stays."""
    for steps in ((), ("first",)):
        with Stage(program) as stage:
            library(stage)
            first, second = (run["run"] for run in runs(stage))
            expect("undo", 0, undo(stage, *([first] if steps else []), "--yes")[0])
            taken = runs(stage)[-1]["run"]
            if not steps:
                expect("undo", 0, undo(stage, "--yes")[0])
            expect("titles", [], titles(stage))
            expect("undo of undos", 0, undo(stage, taken, "--yes")[0])
            stage.execute("UPDATE Tracks SET TimesPlayed=3 WHERE Title='Dawn'")
            status, output, _ = undo(stage, "--yes")
            expect("undo of the second run", 0, status)
            expect_in(second, output)
            expect("titles", ["Dawn"], titles(stage))
            expect("played", [3], [row["TimesPlayed"] for row in
                                   stage.query("SELECT TimesPlayed FROM Tracks")])
            expect("undo of the first run refuses what was played since", 1,
                   undo(stage, "--yes")[0])


def asks_first(program):
    with Stage(program) as stage:
        library(stage)
        status, output, errors = undo(stage)
        expect("without a terminal", 2, status)
        expect_in("--yes", errors)
        expect_in("This would be taken back", output)
        expect("runs", 2, len(runs(stage)))
        expect("titles", ["Dawn", "Rain"], titles(stage))


def leaves_what_was_changed(program):
    with Stage(program) as stage:
        library(stage)
        played = stage.query("SELECT TimesPlayed FROM Tracks WHERE Title='Rain'")[0]["TimesPlayed"]
        stage.execute("UPDATE Tracks SET TimesPlayed=3 WHERE Title='Rain'")
        status, output, _ = undo(stage, "--yes")
        expect("status", 1, status)
        expect_in(r"row of Tracks 2 (D:\Music\Birch\Second\Birch - Rain.mp3): TimesPlayed has been changed since, "
                  "to 3", output)
        expect("titles", ["Dawn", "Rain"], titles(stage))
        played = "Null" if played is None else played
        stage.execute(f"UPDATE Tracks SET TimesPlayed={played} WHERE Title='Rain'")
        expect("started again", 0, undo(stage, "--yes")[0])
        expect("titles", ["Dawn"], titles(stage))


def row_and_file_stay_together(program):
    """The file of a row that was changed since is not renamed back: its row would name nothing."""
    with Stage(program) as stage:
        stage.settings.update(ID3Reconcile="1", ReconcileOption="1")
        stage.write_settings()
        for name, title in (("one", "Dawn"), ("two", "Rain")):
            song(stage, f"Alder/First/Alder - {title}.mp3", song=title, artist="Alder",
                 album="First", track=1 if name == "one" else 2)
        clean_run(stage)
        for title in ("Dawn", "Rain"):
            path = stage.disk / "Music/Alder/First" / f"Alder - {title}.mp3"
            content = sound_files.silence(0.1) + sound_files.tag(
                song=f"Late {title}", artist="Alder", album="First", track=1 if title == "Dawn" else 2)
            sound_files.write(str(path), content, FIRST_DAY)
        clean_run(stage)
        renamed = sorted(os.listdir(stage.disk / "Music/Alder/First"))
        expect("renamed", ["Alder - Late Dawn.mp3", "Alder - Late Rain.mp3"], renamed)
        stage.execute("UPDATE Tracks SET Title='Mine' WHERE Title='Late Dawn'")
        status, output, _ = undo(stage, "--yes")
        expect("status", 1, status)
        expect_in("Alder - Late Dawn.mp3: its row in the database was changed since", output)
        expect("files", ["Alder - Late Dawn.mp3", "Alder - Rain.mp3"],
               sorted(os.listdir(stage.disk / "Music/Alder/First")))
        expect("rows", ["Alder - Late Dawn.mp3", "Alder - Rain.mp3"],
               sorted(row["SoundFile"].rpartition("\\")[2]
                      for row in stage.query("SELECT SoundFile FROM Tracks")))


def edited_journals(program):
    with Stage(program) as stage:
        library(stage)
        journal = stage.host / "Changes" / (runs(stage)[-1]["run"] + ".jsonl")
        lines = journal.read_text("utf-8").splitlines()
        # As a kill leaves it: no end, and half a line.
        without_end = [line for line in lines if json.loads(line)["record"] != "end"]
        saved = max(i for i, line in enumerate(without_end)
                    if json.loads(line)["record"] == "saved")
        row = next(line for line in lines if json.loads(line)["record"] == "row")
        journal.write_text("\n".join([*without_end[:saved + 1], row, '{"record":"fi']),
                           "utf-8")
        status, output, errors = changes(stage)
        expect("cut short", 0, status)
        expect_in("Planned, not done", output)
        expect_in("was cut short", errors)
        told = [json.loads(line) for line in changes(stage, "--json")[1].splitlines()]
        expect("planned", 1, sum("plannedNotDone" in record for record in told))
        expect_in("Reconcile library and database, which was killed\n", undo(stage)[1])
        # Edited in the middle.
        journal.write_text("\n".join(["nonsense", *lines]) + "\n", "utf-8")
        status, _, errors = changes(stage, "last")
        expect("edited", 1, status)
        expect_in("line 1 of", errors)
        for line in changes(stage, "--json")[1].splitlines():
            json.loads(line)
        status, output, _ = undo(stage, "--yes")
        expect("undo by an edited journal", 1, status)
        expect_in("line 1 of", output)
        expect("titles", ["Dawn"], titles(stage))


def killed(program):
    """The undo of a run of many changes is killed again and again, and goes on each time."""
    with Stage(program) as stage:
        stage.settings["ID3Reconcile"] = "1"
        stage.write_settings()
        for number in range(60):
            song(stage, f"Alder/First/{number:02}.mp3", song=f"Song {number}", artist="Alder",
                 album="First", track=number + 1)
        before = sorted(os.listdir(stage.disk / "Music/Alder/First"))
        clean_run(stage)
        if sorted(os.listdir(stage.disk / "Music/Alder/First")) == before:
            raise Failed("the run has renamed nothing")
        kills = 0
        for wait in (0.02, 0.03, 0.04, 0.05, 0.06, 0.08):
            process = stage.start("undo", "--host", str(stage.host), "--yes")
            time.sleep(wait)
            process.send_signal(signal.SIGKILL)
            process.communicate()
            kills += process.returncode == -signal.SIGKILL
        if len(runs(stage)) > 1 and "undoneBy" not in runs(stage)[0]:
            expect("after kills", 0, undo(stage, "--yes")[0])
        elif len(runs(stage)) == 1:
            expect("undo", 0, undo(stage, "--yes")[0])
        expect("names", before, sorted(os.listdir(stage.disk / "Music/Alder/First")))
        expect("titles", [], titles(stage))
        stage.confirm_database(unrepaired=True)


def cut_off(stage, run):
    """Leaves a run's journal as a kill at the very end does."""
    journal = stage.host / "Changes" / f"{run}.jsonl"
    lines = journal.read_text("utf-8").splitlines()
    if json.loads(lines[-1])["record"] != "end":
        raise Failed(f"{run} has not come to its end")
    journal.write_text("".join(line + "\n" for line in lines[:-1]), "utf-8")


def in_parts(program):
    """An undo that was cut off and started again is one undo: what it tells takes all of it back, and the
    next one goes further back."""
    with Stage(program) as stage:
        library(stage)
        expect("undo", 0, undo(stage, "--yes")[0])
        first = runs(stage)[-1]["run"]
        cut_off(stage, first)
        status, output, _ = undo(stage, "--yes")
        expect("started again", 0, status)
        expect_in(f"It goes on with the undo {first}, which has not done all of it", output)
        expect_in(f"'quillon undo {first}' takes this undo back", output)
        expect("goes on with", first, runs(stage)[-1].get("goesOnWith"))
        expect_in(f", goes on with {first}", changes(stage, "--list")[1])
        expect_in(f"It goes on with {first}, which has not done all of it", changes(stage)[1])
        expect("titles", ["Dawn"], titles(stage))
        # Any of its parts means the whole.
        expect("undo of the undo", 0, undo(stage, runs(stage)[-1]["run"], "--yes")[0])
        expect("titles", ["Dawn", "Rain"], titles(stage))
        expect("names", ["Birch - Rain.mp3"], os.listdir(stage.disk / "Music/Birch/Second"))
        expect("undo", 0, undo(stage, "--yes")[0])
        expect("titles", ["Dawn"], titles(stage))
        cut_off(stage, runs(stage)[-1]["run"])
        expect("started again", 0, undo(stage, "--yes")[0])
        expect("further back", 0, undo(stage, "--yes")[0])
        expect("titles", [], titles(stage))


def differences(stage):
    """Rows of differences, in their order: the song, the tag's artist and the time."""
    return [(row["Track"], row["ID3Value"], row["UpdateTime"]) for row in stage.query(
        "SELECT Track, ID3Value, UpdateTime FROM SpinnerID3Differences")]


def wrong_artist(stage, title, track, artist):
    song(stage, f"Alder/First/Alder - {title}.mp3", song=title, artist=artist, album="First",
         track=track)


def next_second():
    """Times of rows have no fractions of seconds."""
    time.sleep(1.1)


def differences_that_stay(program):
    """Rows of differences that stay get another time, all at once, and have it back afterwards."""
    with Stage(program) as stage:
        stage.settings["ID3Reconcile"] = "1"
        stage.write_settings()
        for track, title in enumerate(("Dawn", "Dusk", "Noon"), 1):
            wrong_artist(stage, title, track, "Cedar")
        clean_run(stage)
        first = differences(stage)
        expect("differences", ["Dawn", "Dusk", "Noon"], [row[0] for row in first])
        next_second()
        _, output, _ = stage.call("preview", "--host", str(stage.host))
        expect_in("Differences between tags and database as before: 3\n", output)
        clean_run(stage)
        second = differences(stage)
        expect("the same", [row[:2] for row in first], [row[:2] for row in second])
        expect("with one other time", 1, len({row[2] for row in second} - {row[2] for row in first}))
        told = [json.loads(line) for line in changes(stage, "--json")[1].splitlines()]
        of_rows = [record for record in told if record["record"] in ("row", "date")
                   and record["table"] == "SpinnerID3Differences"]
        expect("records", [("date", 3)],
               [(record["record"], record.get("rows")) for record in of_rows])
        expect_in("Differences between tags and database as before: 3\n", changes(stage)[1])
        # One goes, one comes between the others.
        next_second()
        wrong_artist(stage, "Dawn", 1, "Alder")
        wrong_artist(stage, "Early", 4, "Cedar")
        clean_run(stage)
        third = differences(stage)
        expect("in order", ["Dusk", "Early", "Noon"], [row[0] for row in third])
        told = changes(stage)[1]
        for kind, count in (("added", 1), ("removed", 1), ("as before", 2)):
            expect_in(f"Differences between tags and database {kind}: {count}\n", told)
        expect("undo", 0, undo(stage, "--yes")[0])
        expect("as after the second run", second, sorted(differences(stage)))
        expect("undo", 0, undo(stage, runs(stage)[1]["run"], "--yes")[0])
        expect("as after the first run", first, sorted(differences(stage)))
        expect("undo of the undos", 0, undo(stage, runs(stage)[3]["run"], "--yes")[0])
        expect("as after the third run", third, sorted(differences(stage)))
        expect("undo of all", 0, undo(stage, runs(stage)[0]["run"], "--yes")[0])
        expect("differences", [], differences(stage))
        stage.confirm_database(unrepaired=True)


def database_in_use(program):
    with Stage(program) as stage:
        library(stage)
        # The lock file's entry for one user: the computer's name and the user's, 32 bytes each.
        (stage.disk / "jukebox.ldb").write_text("JUKEBOX-PC".ljust(32) + "Admin".ljust(32))
        status, _, errors = undo(stage, "--yes")
        (stage.disk / "jukebox.ldb").unlink()
        expect("status", 2, status)
        expect_in("Nothing was taken back", errors)
        expect_in("in use by JUKEBOX-PC", errors)
        expect("titles", ["Dawn", "Rain"], titles(stage))


def main():
    stories = (several_runs, one_of_two, asks_first, leaves_what_was_changed, row_and_file_stay_together,
               edited_journals, killed, in_parts, differences_that_stay, database_in_use)
    for story in stories:
        try:
            story(sys.argv[1])
        except Failed as failure:
            print(f"{story.__name__}: {failure}")
            return 1
    print(f"{len(stories)} stories as expected")
    return 0


if __name__ == "__main__":
    sys.exit(main())
