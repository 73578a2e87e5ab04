#!/usr/bin/env python3
"""process_test.py PROGRAM   what only a process of its own can show: streams that are closed or break,
signals, exit statuses."""

import json
import os
import re
import resource
import signal
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "outside"))

import processes
from processes import Failed, start, told_by

PROGRAM = sys.argv[1]
TIME_LIMIT = 120


def call(*arguments, **options):
    return processes.call([PROGRAM, *arguments], **options)


def shell(command, **variables):
    """Runs a shell command in which "$Q" is the program."""
    return processes.call(["sh", "-c", command], environment=dict(Q=PROGRAM, **variables))


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, got {actual!r}")


def host_folder(work, albums=1):
    for number in range(albums):
        folder = work / "Music" / f"Artist {number}" / "Album"
        folder.mkdir(parents=True)
        for track in range(1, 6):
            (folder / f"{track} - Song.mp3").write_bytes(bytes(300))
    expect("init", 0, call("init", str(work / "shelf"), "--music", str(work / "Music")).returncode)
    return str(work / "shelf")


def is_whole(host):
    checked = call("db", "check", f"{host}/jukebox.mdb")
    expect("db check: " + checked.stdout + checked.stderr, 0, checked.returncode)


def streams_are_kept_apart(work):
    done = call("--version")
    expect("version on standard output", True, done.stdout.startswith("quillon "))
    done = call("init", str(work / "x"))
    expect("status of a usage error", 2, done.returncode)
    expect("output of a usage error", "", done.stdout)
    expect("hint of a usage error", True, "Try 'quillon init --help'." in done.stderr)


def closed_streams_never_reach_the_database(work):
    host = host_folder(work)
    for closed in (">&-", "<&- >&-", "<&- >&- 2>&-", "2>&- >&-"):
        done = shell(f'"$Q" run --host "$HOST" --view plain {closed}', HOST=host)
        expect(f"status with {closed}", 0, done.returncode)
        is_whole(host)


def a_reader_that_goes_away_does_not_end_a_run(work):
    host = host_folder(work)
    done = shell('{ "$Q" run --host "$HOST" --view plain; echo $? >&2; } | head -n 1', HOST=host)
    expect("what the reader saw", True, done.stdout.startswith("Library Consistency Management"))
    expect("status of the run", "0\n", done.stderr)
    is_whole(host)


def a_reader_that_does_not_read_holds_no_run_back(work):
    host = host_folder(work, albums=20)
    reader, writer = os.pipe()
    os.set_blocking(writer, False)
    try:
        while os.write(writer, bytes(4096)):
            pass
    except BlockingIOError:
        pass
    os.set_blocking(writer, True)
    done = call("run", "--host", host, "--view", "plain", stdout=writer)
    expect("status of the run", 0, done.returncode)
    expect("the pipe of others still waits for its reader", True, os.get_blocking(writer))
    os.close(writer)
    os.close(reader)
    is_whole(host)


def quiet_runs_tell_errors_and_a_summary(work):
    host = host_folder(work)
    done = call("run", "--host", host, "--quiet")
    expect("status", 0, done.returncode)
    expect("one line", 1, len(done.stdout.splitlines()))
    expect("the summary", True, re.fullmatch(
        r"Done in (?:\d:\d\d:\d\d|0\.\d+ s); no errors\. Albums: 1 added\. Tracks: 5 added\. "
        r"Playlists: \d written\. Download table: 1 song added, 1 artist added\.\n",
        done.stdout) is not None)
    set_to(host, "PlayListPath", "Q:\\Nowhere\\")
    done = call("--quiet", "--host", host)
    told = done.stdout.splitlines()
    expect("status with errors", 1, done.returncode)
    expect("a line for each error and one more", True,
           len(told) > 1 and re.search(rf"; {len(told) - 1} errors? in host\.log\.", told[-1])
           is not None)
    for view in ("window", "terminal"):
        done = call("run", "--host", host, "--view", view, "--quiet")
        expect(f"status of a quiet {view}", 2, done.returncode)
        expect(f"output of a quiet {view}", "", done.stdout)
        expect(f"words for a quiet {view}", True,
               "--quiet: goes with plain lines only" in done.stderr)


def quiet_runs_name_what_went_away(work):
    host = host_folder(work)
    own = Path(host) / "host.ini"
    own.write_text(own.read_text("utf-8").replace("KeepDays=14", "KeepDays=0"), "utf-8")
    call("run", "--host", host, "--quiet")
    songs = sorted(Path(work).rglob("*.mp3"))
    for song in songs[:2]:
        song.unlink()
    done = call("run", "--host", host, "--quiet")
    told = done.stdout.splitlines()
    expect("status", 0, done.returncode)
    expect("how many", "2 tracks removed:", told[0])
    expect("which", [song.name for song in songs[:2]],
           [line.rsplit("\\", 1)[-1] for line in told[1:3]])
    expect("the summary last", True, len(told) == 4 and re.search(r" Tracks: [^.]*\b2 removed", told[3]) is not None)
    for song in songs[2:]:
        song.unlink()
    done = call("run", "--host", host, "--quiet")
    expect("status of a braked run", 1, done.returncode)
    expect("the brake", True, "no music was found in" in done.stdout)
    expect("no list of losses", False, "tracks removed:" in done.stdout)
    done = call("run", "--host", host, "--quiet", "--allow-removals")
    expect("status of an allowed run", 0, done.returncode)
    expect("all that was left", True, done.stdout.startswith("3 tracks removed:\n"))


def settings(host):
    return Path(host) / "Quillon.ini"


def set_to(host, key, value):
    lines = [f"{key}={value}" if line.startswith(f"{key}=") else line
             for line in settings(host).read_text("utf-8").splitlines()]
    settings(host).write_text("\r\n".join(lines) + "\r\n", "utf-8", newline="")


def a_log_that_takes_nothing_neither_ends_nor_silences_a_run(work):
    host = host_folder(work)
    log = Path(host) / "host.log"
    log.symlink_to("/dev/full")
    set_to(host, "PlayListPath", "Q:\\Nowhere\\")
    for options in (["--view", "plain"], ["--quiet"]):
        done = call("run", "--host", host, *options)
        expect("status", 1, done.returncode)
        told = [line for line in done.stdout.splitlines() if "log cannot be written" in line]
        expect("told in the face", [
            f"   Quillon: The log cannot be written: Disk full: {log}. What is missing from it is only shown here"],
            told)
        expect("the errors all the same", True, "Path not found: Q:\\Nowhere" in done.stdout)
        expect("where they are told", True, re.search(
            r"\d errors? on the error output, host\.log lacks \d+ records?\.", done.stdout) is not None)
        first, *errors = done.stderr.splitlines()
        expect("told at the end", True, re.fullmatch(
            rf"quillon: host\.log lacks \d+ records?: Disk full: {log}\.", first) is not None)
        expect("errors at the end", True, errors and "Path not found: Q:\\Nowhere" in errors[0])
    set_to(host, "PlayListPath", "Z:" + str(Path(host) / "Playlists").replace("/", "\\"))
    set_to(host, "Reconcile", "0")
    done = call("run", "--host", host, "--quiet")
    expect("status of a run that did nothing and had nothing to tell", (2, ""),
           (done.returncode, done.stderr))
    expect("music", 5, len(list((work / "Music").rglob("*.mp3"))))
    is_whole(host)


def a_file_size_limit_is_a_full_disk(work):
    host = host_folder(work, albums=30)
    size = (Path(host) / "jukebox.mdb").stat().st_size

    def limited(most):
        return call("run", "--host", host, "--view", "plain",
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (most, most)))

    done = limited(size - 8192)
    expect("status where not even a backup fits", 2, done.returncode)
    expect("words", True, "TimeStampBackup Line 3 Disk full: " in done.stdout)
    is_whole(host)
    expect("traces", [], [path.name for path in Path(host).iterdir() if ".tmp" in path.name
                          or "_Copy Dated" in path.name])
    done = limited(size + 1024)
    expect("status where the database cannot grow", 1, done.returncode)
    is_whole(host)
    expect("the run with room", 0, call("run", "--host", host, "--view", "plain").returncode)
    counted = call("db", "query", "--json", f"{host}/jukebox.mdb", "SELECT Count(*) AS N FROM Tracks")
    expect("tracks in the end", '{"N":150}\n', counted.stdout)


def a_run_without_a_journal_changes_nothing(work):
    host = host_folder(work)
    changes, elsewhere = Path(host) / "Changes", work / "elsewhere"
    elsewhere.mkdir()
    changes.symlink_to(elsewhere)
    before = {path.name for path in Path(host).iterdir()}
    done = call("run", "--host", host, "--view", "plain")
    expect("status", 2, done.returncode)
    expect("words", True, done.stderr.startswith(
        f"quillon: The journal of changes cannot be started: Permission denied: {changes} "))
    expect("the log", True, "journal of changes" in (Path(host) / "host.log").read_text("utf-8"))
    expect("behind the link", [], list(elsewhere.iterdir()))
    changes.unlink()
    done = call("run", "--host", host, "--view", "plain",
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (16, 16)))
    expect("status on a full disk", 2, done.returncode)
    expect("words", True, "cannot be started: Disk full: " in done.stderr)
    expect("journals", [], list(changes.iterdir()))
    expect("nothing new", before | {"Changes", "host.log"}, {path.name for path in Path(host).iterdir()})


def a_run_whose_journal_takes_no_more_stops(work):
    host = host_folder(work, albums=200)
    database = Path(host) / "jukebox.mdb"
    # A journal of that many albums takes three times as much.
    most = database.stat().st_size + 100_000
    done = call("run", "--host", host, "--view", "plain",
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (most, most)))
    expect("status", 1, done.returncode)
    expect("summary", True, "Stopped after " in done.stdout)
    told = "The run was stopped, since a run changes nothing that it cannot journal: Disk full: "
    expect("error output", True, f"quillon: {told}" in done.stderr)
    expect("log", True, told in (Path(host) / "host.log").read_text("utf-8"))
    expect("few words", True, done.stdout.count("it lacks must not be done") < 10)
    is_whole(host)
    journal, = (Path(host) / "Changes").glob("*.jsonl")
    records = [json.loads(line) for line in journal.read_text("utf-8").splitlines()]
    expect("the end", ("end", "failed", 1), tuple(
        records[-1][name] for name in ("record", "outcome", "status")))
    saved = max((at for at, record in enumerate(records) if record["record"] == "saved"), default=0)
    added = sum(record["record"] == "row" and record["table"] == "Tracks"
                and record["change"] == "added" for record in records[:saved])
    counted = call("db", "query", "--json", str(database), "SELECT Count(*) AS N FROM Tracks")
    expect("what is saved is journalled", f'{{"N":{added}}}\n', counted.stdout)


def huge_text_files_are_named_in_plain_words(work):
    host = host_folder(work)
    lists = Path(host) / "Playlists"
    for name in ("a.pla", "b.txt"):
        (lists if name == "a.pla" else work / "Music").joinpath(name).write_bytes(b"")
    # Lists are read where there are songs that they could name.
    call("run", "--host", host, "--view", "plain")
    os.truncate(lists / "a.pla", 1 << 30)
    done = call("run", "--host", host, "--view", "plain")
    expect("status with a huge playlist", 1, done.returncode)
    expect("words for it", True, "a.pla is too large for a playlist" in done.stdout)
    expect("raw words", False, "std::" in done.stdout + done.stderr)
    os.truncate(lists / "a.pla", 0)
    os.truncate(work / "Music" / "b.txt", 1 << 30)
    set_to(host, "LibraryDepthOption", "1")
    done = call("run", "--host", host, "--view", "plain")
    expect("a huge list of roots", True, "b.txt is too large for a list of folders" in done.stdout)
    expect("raw words", False, "std::" in done.stdout + done.stderr)
    os.truncate(settings(host), 1 << 30)
    done = call("run", "--host", host, "--view", "plain")
    expect("status with huge settings", 2, done.returncode)
    expect("words for them", True, "Quillon.ini is larger than 1 MB" in done.stdout)
    os.truncate(Path(host) / "host.ini", 1 << 30)
    done = call("run", "--host", host, "--view", "plain")
    expect("status with a huge host.ini", 2, done.returncode)
    expect("words for it", True, "host.ini is larger than 1 MB" in done.stderr)


def the_host_folder_is_found(work):
    host = host_folder(work)
    expect("by variable", 0, shell('QUILLON_HOST="$HOST" "$Q" run --view plain', HOST=host).returncode)
    expect("as current folder", 0, shell('cd "$HOST" && "$Q" --view plain', HOST=host).returncode)
    done = shell('cd "$WORK" && QUILLON_HOST= "$Q"', WORK=str(work))
    expect("nowhere", 2, done.returncode)
    expect("nowhere, in words", True, "has no Quillon.ini and no host.ini" in done.stderr)


def auto_writes_plain_lines_into_a_pipe(work):
    host = host_folder(work)
    done = call("run", "--host", host)
    expect("phases", True, "\n4. Add Folder Tracks to Library\n" in done.stdout)
    expect("no escape sequences", False, "\x1b" in done.stdout)
    summary = done.stdout.splitlines()[-1]
    expect("summary", True, "Albums: 1 added" in summary and "Tracks: 5 added" in summary)
    done = call("run", "--host", host, "--view", "terminal")
    expect("status without a terminal", 2, done.returncode)


def signalled(host, signals, before=()):
    """A run that gets these signals as soon as its first line is there; its exit status."""
    run = start([*before, PROGRAM, "run", "--host", host, "--view", "plain"])
    run.stdout.readline()
    for number in signals:
        run.send_signal(number)
        time.sleep(0.002)
    return told_by(run).returncode


def signals_abort_and_a_second_one_ends_at_once(work):
    host = host_folder(work, albums=400)
    for signals in ([signal.SIGTERM], [signal.SIGINT], [signal.SIGHUP],
                    [signal.SIGHUP, signal.SIGHUP, signal.SIGTERM],
                    [signal.SIGTERM, signal.SIGINT]):
        expect(f"status after {signals}", 3, signalled(host, signals))
        # Opening for writing lets the journal of an unfinished change have its effect.
        expect("next opening", 0,
               call("db", "exec", f"{host}/jukebox.mdb", "DELETE * FROM Spinner").returncode)
        is_whole(host)
    expect("nohup", 0, signalled(host, [signal.SIGHUP], before=["nohup"]))
    expect("the run after them", 0, call("run", "--host", host, "--view", "plain").returncode)
    counted = call("db", "query", "--json", f"{host}/jukebox.mdb", "SELECT Count(*) AS N FROM Tracks")
    expect("tracks in the end", '{"N":2000}\n', counted.stdout)


def signals_end_a_statement_that_changed_nothing(work):
    host = host_folder(work, albums=20)
    expect("a run", 0, call("run", "--host", host, "--quiet").returncode)
    database = Path(host, "jukebox.mdb")
    before = database.read_bytes()
    each_meets_each = "Tracks AS a, Tracks AS b, Tracks AS c, Tracks AS d WHERE a.ID+b.ID+c.ID=-d.ID"
    for words in (["query", str(database), f"SELECT Count(*) FROM {each_meets_each}"],
                  ["exec", str(database), "UPDATE Tracks SET Title='x' WHERE EXISTS "
                                          f"(SELECT a.ID FROM {each_meets_each})"]):
        for number in (signal.SIGINT, signal.SIGTERM):
            program = start([PROGRAM, "db", *words])
            wait_until_it_listens(program)
            program.send_signal(number)
            status, out, err = told_by(program)
            expect(f"status of {words[0]}", 3, status)
            expect("output", "", out)
            expect("the reason", "quillon: The statement was interrupted; it changed nothing\n", err)
            expect("bytes of the database", True, database.read_bytes() == before)
    expect("a reader that has enough ends a query", "-13\n", shell(
        '{ "$Q" db query "$DB" --json "SELECT a.ID FROM Tracks AS a, Tracks AS b, Tracks AS c";'
        ' echo "-$(($? - 128))" >&2; } | head -n 1', DB=str(database)).stderr)


def wait_until_it_listens(program):
    """Until the process has a handler for SIGTERM."""
    until = time.monotonic() + TIME_LIMIT
    while time.monotonic() < until:
        caught = re.search(r"SigCgt:\s*(\w+)", Path(f"/proc/{program.pid}/status").read_text())
        if caught and int(caught[1], 16) >> (signal.SIGTERM - 1) & 1:
            return
        time.sleep(0.01)
    raise Failed("the program never listened to signals")


def main():
    failures = 0
    for story in (streams_are_kept_apart, closed_streams_never_reach_the_database,
                  a_reader_that_goes_away_does_not_end_a_run,
                  a_reader_that_does_not_read_holds_no_run_back,
                  quiet_runs_tell_errors_and_a_summary, quiet_runs_name_what_went_away,
                  a_log_that_takes_nothing_neither_ends_nor_silences_a_run,
                  a_run_without_a_journal_changes_nothing,
                  a_run_whose_journal_takes_no_more_stops,
                  a_file_size_limit_is_a_full_disk, huge_text_files_are_named_in_plain_words,
                  the_host_folder_is_found,
                  auto_writes_plain_lines_into_a_pipe,
                  signals_abort_and_a_second_one_ends_at_once,
                  signals_end_a_statement_that_changed_nothing):
        name = story.__name__.replace("_", " ")
        with tempfile.TemporaryDirectory(prefix="quillon-process-") as folder:
            try:
                story(Path(folder))
                print(f"{name}: yes")
            except Failed as failure:
                failures += 1
                print(f"{name}: NO: {failure}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
