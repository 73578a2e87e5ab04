#!/usr/bin/env python3
"""interrupted.py PROGRAM abort|kill MOMENTS   stops reconcile runs at many moments.

A settled library changes (files added, removed, renamed, moved); the run that should catch up is
stopped at one moment after another, each time from the same start. Whatever the moment, nothing may
be lost that an undisturbed run would not remove, no number may be missing, the file must be
whole, and further runs must end where undisturbed ones end, with playlists of the same songs.

A run of the program for Windows is killed by a program beside it ($QUILLON_TERMINATOR): some by the time
since they have the database open, some right when they are writing it.
"""

import os
import re
import shutil
import signal
import sys
import time
from pathlib import Path

from stage import Failed, Stage, confirm_whole

import song_lists
import sound_files

ARTISTS, ALBUMS, TRACKS = 40, 3, 5
FIRST_DAY = 1500000000
DAY = 86400


def track_path(stage, artist, album, track):
    folder = f"Music/Artist {artist:02}/Album {album}"
    return str(stage.disk / folder / f"{track:02} - Song {artist}.{album}.{track}.mp3")


def make_library(stage):
    for artist in range(ARTISTS):
        for album in range(ALBUMS):
            for track in range(1, TRACKS + 1):
                content = sound_files.silence(0.05) + sound_files.tag(track=TRACKS + 1 - track)
                # Later tracks are older: numbering by time turns the order of the tags round.
                sound_files.write(track_path(stage, artist, album, track), content,
                                  FIRST_DAY - track * DAY)


def change_library(stage):
    for artist in range(0, ARTISTS, 4):
        os.remove(track_path(stage, artist, 0, 2))
        os.rename(track_path(stage, artist, 0, 3), track_path(stage, artist, 0, 3) + " new.mp3")
        sound_files.write(track_path(stage, artist, 1, 9), sound_files.silence(0.05),
                          FIRST_DAY + DAY)
        shutil.rmtree(os.path.dirname(track_path(stage, artist, 2, 1)))
        sound_files.write(track_path(stage, artist, 7, 1), sound_files.silence(0.05), FIRST_DAY)


def tracks(stage):
    return {row["SoundFile"]: row for row in stage.query(
        "SELECT Tracks.ID, SoundFile, Track, Tracks.Title, Albums.Title AS Album,"
        " Albums.Artist AS Artist, Albums.Tracks AS TrackCount"
        " FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID")}


def outcome(stage):
    """What counts in the end, whatever keys new rows were given."""
    return {file: {field: value for field, value in row.items() if field != "ID"}
            for file, row in tracks(stage).items()}


def run(stage):
    status, output, errors = stage.reconcile()
    if status != 0:
        raise Failed(f"a run that nobody disturbs ends with {status}:\n{output}{errors}")


def timed_run(stage):
    began = time.monotonic()
    run(stage)
    return time.monotonic() - began


RUN = ("run", "--view", "plain", "--host")
KILLED = 137  # what the terminator tells


def stop_at(stage, seconds, number):
    """Starts a run and sends it a signal after that time; its exit status."""
    process = stage.start(*RUN, str(stage.host))
    time.sleep(seconds)
    process.send_signal(number)
    output, errors = process.communicate()
    return process.returncode, output.decode() + errors.decode()


class Terminator:
    """Kills runs of the program for Windows from within Windows."""

    def __init__(self, stage, program):
        self.stage = stage
        self.program = program
        # The first is there as long as the database is open, the second while it is overwritten.
        self.files = [stage.disk / "jukebox.ldb", stage.disk / "jukebox.mdb.journal"]

    def told(self, file, microseconds):
        under = (self.program, f"Z:{file}", microseconds)
        status, output, _ = self.stage.call(*RUN, str(self.stage.host), under=under)
        return status, output

    def duration(self, file):
        """For how many microseconds a run has the file."""
        status, output = self.told(file, "never")
        lasted = re.search(r"^lasted (\d+)", output, re.MULTILINE)
        if status != 0 or not lasted:
            raise Failed(f"a run that is only watched ends with {status}:\n{output}")
        return int(lasted[1])

    def kills(self, file, microseconds):
        """Whether the run was killed before its end."""
        return self.told(file, str(microseconds))[0] == KILLED


def remove_backups(stage):
    for entry in stage.disk.iterdir():
        if "_Copy Dated_" in entry.name:
            shutil.rmtree(entry) if entry.is_dir() else entry.unlink()


class Interrupted:
    def __init__(self, stage, moments):
        self.stage = stage
        self.moments = moments
        self.start = stage.work / "start.mdb"
        self.unrepaired = self.half_written = 0
        make_library(stage)
        run(stage)
        run(stage)
        shutil.copy(stage.database, self.start)
        self.before = tracks(stage)
        self.make_playlists()
        change_library(stage)
        catching_up = timed_run(stage)
        self.caught_up = tracks(stage)
        # The machine may be busy with other things during one of them.
        self.duration = min(catching_up, timed_run(stage))
        self.settled = outcome(stage)
        self.songs = song_lists.songs(stage)
        if not any(self.songs.values()) or song_lists.contents(stage) == self.playlists:
            raise Failed("the playlists were not repaired")
        if self.settled == self.before or not self.settled:
            raise Failed("the changed library left no trace")
        program = os.environ.get("QUILLON_TERMINATOR")
        self.terminator = Terminator(stage, program) if program else None
        self.durations = [self.watched(file) for file in self.terminator.files] if program else []

    def make_playlists(self):
        """A list for each artist, of its songs from the last to the first."""
        for artist in range(ARTISTS):
            files = sorted(file for file, row in self.before.items()
                           if row["Artist"] == f"Artist {artist:02}")
            song_lists.write(self.stage, f"Songs of {artist:02}.pla", reversed(files))
        self.playlists = song_lists.contents(self.stage)

    def from_the_start(self, moment):
        song_lists.put_back(self.stage, self.playlists)
        for leftover in self.stage.disk.glob("jukebox.*"):
            leftover.unlink()
        shutil.copy(self.start, self.stage.database)
        remove_backups(self.stage)
        # Some moments lie behind the usual end, as a disturbed run may take longer.
        return self.duration * 1.1 * moment / self.moments

    def watched(self, file):
        self.from_the_start(0)
        return self.terminator.duration(file)

    def nothing_lost(self):
        """Rows that an undisturbed run keeps are there, and no mark is left in any."""
        now = tracks(self.stage)
        for file in self.before.keys() & self.caught_up.keys():
            if file not in now:
                raise Failed(f"the row of {file} is lost")
            if now[file]["ID"] != self.before[file]["ID"]:
                raise Failed(f"the row of {file} is another one")
        for file, row in now.items():
            if row["Track"] == 0 or row["TrackCount"] == 0:
                raise Failed(f"still marked: {row}")

    def downloads_whole(self):
        """Each row of the download table has the link of its own number, each song one row."""
        songs = set()
        for row in self.stage.query("SELECT ID, Artist, Album, Song, FileName FROM Spinner"):
            if row["FileName"] != f"rtsp://localhost/spinlinks/000-{row['ID']}-000.rm":
                raise Failed(f"a download without its link: {row}")
            song = (row["Artist"], row["Album"], row["Song"])
            if song in songs:
                raise Failed(f"in the download table twice: {song}")
            songs.add(song)

    def ends_like_the_others(self):
        self.downloads_whole()
        run(self.stage)
        run(self.stage)
        if outcome(self.stage) != self.settled:
            raise Failed("further runs end elsewhere than undisturbed ones")
        self.downloads_whole()
        if song_lists.songs(self.stage) != self.songs:
            raise Failed("the playlists name other songs than after undisturbed runs")
        self.stage.confirm_database()

    def abort(self, moment):
        status, told = stop_at(self.stage, self.from_the_start(moment), signal.SIGTERM)
        # A signal before the program has come to handle signals ends it as usual.
        if status not in (0, 3, -signal.SIGTERM):
            raise Failed(f"an aborted run ends with {status}:\n{told}")
        self.stage.confirm_database(unrepaired=True)
        self.nothing_lost()
        self.ends_like_the_others()
        return status == 3

    def is_killed(self, moment):
        seconds = self.from_the_start(moment)
        if not self.terminator:
            return stop_at(self.stage, seconds, signal.SIGKILL)[0] == -signal.SIGKILL
        kind = moment // 2 % 2
        wait = self.durations[kind] * moment // self.moments
        return self.terminator.kills(self.terminator.files[kind], wait)

    def kill(self, moment):
        is_killed = self.is_killed(moment)
        self.unrepaired += Path(f"{self.stage.database}.playlists").exists()
        self.half_written += Path(f"{self.stage.database}.journal").exists()
        # The next run of the program for Windows has to put things right itself.
        if not self.terminator:
            self.stage.execute("DELETE * FROM SpinnerID3Differences")
            self.stage.tool("db", "check", str(self.stage.database))
            confirm_whole(self.stage.database)
        if moment % 2 == 0:
            self.library_away()
        self.ends_like_the_others()
        return is_killed

    def library_away(self):
        """The next run finds no library at all: it gives the numbers back and removes nothing."""
        music, away = self.stage.disk / "Music", self.stage.disk / "Away"
        music.rename(away)
        self.stage.reconcile()
        away.rename(music)
        self.nothing_lost()


def main():
    way, moments = sys.argv[2], int(sys.argv[3])
    with Stage(sys.argv[1]) as stage:
        try:
            story = Interrupted(stage, moments)
        except Failed as failure:
            print(f"before any interruption: {failure}")
            return 1
        stopped = 0
        for moment in range(moments):
            try:
                stopped += getattr(story, way)(moment)
            except Failed as failure:
                print(f"{way} at moment {moment} of {moments}: {failure}")
                return 1
        recoveries = sum("playlists taken as" in line for line in stage.log_messages())
    print(f"{way}: {stopped} of {moments} runs were stopped before their end")
    if way == "kill":
        print(f"of which {story.unrepaired} with playlists to be repaired, {story.half_written} with a journal")
    print(f"{recoveries} runs took playlists as an interrupted one had captured them")
    # Otherwise nothing was tested.
    was_tested = stopped >= moments // 4 and (way == "abort" or story.unrepaired > 0)
    if story.terminator:
        was_tested = was_tested and stopped >= moments // 2 and story.half_written > 0
    return 0 if was_tested else 1


if __name__ == "__main__":
    sys.exit(main())
