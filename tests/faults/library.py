"""A small library in a folder of its own, which can be copied and run again and again: FOLDER/host is
the host folder as `quillon init` makes it, FOLDER/disk is drive D:. Each song is a sound of its own,
so that a file tells what it holds whatever it is called."""

import os
import re
import shutil
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "scenarios"))

from stage import Failed, exported, start, told_by

import song_lists
import sound_files

FIRST_DAY, DAY = 1500000000, 86400
# Where a song's name stands at the end of its sound.
MARK_SIZE = 64
TAG_SIZE = 128
# The longest that a run of such a library may take: many hundred times what it does take.
TIME_LIMIT = 60
DISC = "252D1F0A"


def temporary_folder():
    """A new folder; in memory where there is such a file system, since nothing is really flushed there
    and runs take a tenth of the time."""
    in_memory = os.access("/dev/shm", os.W_OK)
    return Path(tempfile.mkdtemp(prefix="quillon-faults-", dir="/dev/shm" if in_memory else None))


def sound_of(song):
    """A short sound that is this song's alone. Players skip what stands behind a frame's silence."""
    return sound_files.silence(0.05)[:-MARK_SIZE] + song.encode().rjust(MARK_SIZE, b"\0")


def without_tag(content):
    if content.startswith(b"ID3"):
        size = sum(byte << shift for byte, shift in zip(content[6:10], (21, 14, 7, 0)))
        content = content[10 + size:]
    return content[:-TAG_SIZE] if content[-TAG_SIZE:].startswith(b"TAG") else content


def song_in(content):
    """The song that a sound file holds; None when it is not the whole of one."""
    sound = without_tag(content)
    song = sound[-MARK_SIZE:].strip(b"\0").decode("utf-8", "replace")
    return song if sound == sound_of(song) else None


class Library:
    def __init__(self, folder, program):
        self.folder = Path(folder)
        self.program = program
        self.host = self.folder / "host"
        self.disk = self.folder / "disk"
        self.music = self.disk / "Music"
        self.lists = self.host / "Playlists"
        self.covers = self.host / "Covers"
        self.database = self.host / "jukebox.mdb"
        self.log = self.host / "host.log"

    def make(self, modern=False):
        """`modern`: with what `init` switches on for music of today, and for music that is missing."""
        self.music.mkdir(parents=True)
        self.call("init", str(self.host), "--music", str(self.music))
        settings = self.host / "host.ini"
        # A copy must not lead back here.
        text = re.sub(r"(?m)^D=.*$", "D=../disk", settings.read_text())
        text = text.replace("Style=modern", "Style=classic")
        settings.write_text(text)
        if modern:
            return
        # Songs of albums without a cover are searched for pictures.
        text = text.replace("FolderImages=1", "FolderImages=0")
        # Without Read=best all tags are read for it.
        text = text.replace("TrackArtists=1", "TrackArtists=0")
        # The rules tell rows that are gone by the numbers that rows which wait for files lack, too.
        text = text.replace("FollowMovedFiles=1", "FollowMovedFiles=0")
        # What is known of tags is a file more that every step of a run would be tried on.
        text = text.replace("Read=best", "Read=v1").replace("Write=both", "Write=v1")
        settings.write_text(text.replace("KeepDays=14", "KeepDays=0"))

    def copy_to(self, folder):
        shutil.copytree(self.folder, folder, symlinks=True)
        return Library(folder, self.program)

    def run(self, environment=None):
        """One run: exit status, standard output, standard error."""
        command = [str(self.program), "run", "--host", str(self.host), "--view", "plain"]
        return self.told(command, environment)

    def told(self, command, environment=None):
        """A process in the library's folder: exit status, standard output, standard error."""
        return told_by(start(command, self.folder, environment), TIME_LIMIT)

    def call(self, *arguments):
        """Runs the program where it must succeed."""
        command = [str(self.program), *arguments]
        status, output, errors = told_by(start(command, self.folder), TIME_LIMIT)
        if status != 0:
            raise Failed(f"quillon {' '.join(arguments)}: exit status {status}\n{output}{errors}")
        return output

    def settle(self):
        """Runs until all numbers are final, without a fault."""
        for _ in range(2):
            status, output, errors = self.run()
            if status != 0:
                raise Failed(f"a run that nothing disturbs ends with {status}:\n{output}{errors}")
        self.remove_traces()

    def remove_traces(self):
        """Forgets the log and the backups of earlier runs."""
        self.log.unlink(missing_ok=True)
        for backup in [*self.host.glob("*_Copy Dated_*"), *self.disk.glob("*_Copy Dated_*")]:
            shutil.rmtree(backup) if backup.is_dir() else backup.unlink()

    def execute(self, statement):
        self.call("db", "exec", str(self.database), statement)

    def rows(self, table):
        return exported(self.database, table)

    def set(self, **settings):
        """Settings of Quillon.ini that stand there already."""
        file = self.host / "Quillon.ini"
        text = file.read_bytes().decode("cp1252")
        for key, value in settings.items():
            text, found = re.subn(rf"(?m)^{key}=.*?(\r?)$",
                                  lambda line, k=key, v=value: f"{k}={v}{line[1]}", text)
            if found != 1:
                raise Failed(f"Quillon.ini has {found} lines {key}=")
        file.write_bytes(text.encode("cp1252"))

    def add_song(self, place, song, day=0, tag=None, head=b""):
        """A sound file below drive D:; `tag` are the fields of its tag, `head` is one of version 2."""
        content = head + sound_of(song) + (sound_files.tag(**tag) if tag else b"")
        sound_files.write(self.disk / place, content, FIRST_DAY + day * DAY)

    def retag(self, place, tag):
        """Gives a file another tag; its time stays."""
        path = self.disk / place
        modified = path.stat().st_mtime
        content = without_tag(path.read_bytes()) + sound_files.tag(**tag)
        sound_files.write(path, content, modified)

    def touch(self, place, day):
        os.utime(self.disk / place, (FIRST_DAY + day * DAY,) * 2)

    def write_list(self, name, lines):
        (self.lists / name).write_bytes(song_lists.text(lines))

    def line_of(self):
        """The playlist line of each song, by its name."""
        return {song_in(self.local(row["SoundFile"]).read_bytes()):
                f"{row['CDJID']} {int(row['Track']) - 1}"
                for row in self.rows("Tracks") if row["SoundFile"]}

    def local(self, path):
        """Where a stored path leads to; host.ini and the settings of MakeRemote say so."""
        for root, folder in (("D:", self.disk), ("H:", self.host), (r"\\nas\music", self.disk),
                             (r"\\nas\host", self.host)):
            if path.lower().startswith(root.lower() + "\\"):
                return folder / path[len(root) + 1:].replace("\\", "/")
        return self.folder / "unmapped" / path.replace("\\", "/")
