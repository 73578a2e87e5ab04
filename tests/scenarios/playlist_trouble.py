#!/usr/bin/env python3
"""playlist_trouble.py PROGRAM   playlists that cannot be read or written while a library is renamed and
renumbered, and the runs behind that.

Which songs a list names is read by the keys of their rows, without the program, since a run that
compares tags gives files and rows other names. Whatever stood in the way, the first run that nothing
hinders must bring every list back to its songs.
"""

import os
import sys

from stage import NOBODY, Failed, Stage

import song_lists
import sound_files

ALBUMS, TRACKS = 3, 5
FIRST_DAY, DAY = 1500000000, 86400


def make_library(stage):
    """Files named by number, with tags that have the numbers turned round."""
    for album in range(ALBUMS):
        for track in range(1, TRACKS + 1):
            path = stage.disk / f"Music/Alder/Album {album}/{track:02} - Song {track}.mp3"
            tag = sound_files.tag(song=f"Song {track}", artist="Alder", album=f"Album {album}",
                                  track=TRACKS + 1 - track)
            sound_files.write(path, sound_files.silence(0.05) + tag, FIRST_DAY + track * DAY)


def give_away(stage):
    """Not even root may write what is write-protected when it is another account's program."""
    for folder, folders, files in os.walk(stage.work):
        for name in [".", *folders, *files]:
            os.chown(os.path.join(folder, name), NOBODY, NOBODY, follow_symlinks=False)


def run(stage, expected=0):
    if os.geteuid() == 0:
        give_away(stage)
    status, output, errors = stage.reconcile(unprivileged=True)
    if status != expected:
        raise Failed(f"exit status {status}, not {expected}\n{output}{errors}")
    return output


def songs(stage):
    """The keys of the songs that each list names, in its order."""
    key_at = {(row["CDJID"], int(row["Track"]) - 1): row["ID"] for row in song_lists.rows(stage)}
    named = {}
    for name, content in song_lists.contents(stage).items():
        places = [line.split(" ") for line in content.decode("cp1252").split("\r\n")[1:-1]]
        named[name] = [key_at.get((cdjid, int(index))) for cdjid, index in places]
    return named


def settle(stage):
    """A library that a run has looked at, with lists; the next one will compare tags."""
    make_library(stage)
    run(stage)
    run(stage)
    files = sorted(row["SoundFile"] for row in song_lists.rows(stage))
    song_lists.write(stage, "Hindered.pla", files)
    song_lists.write(stage, "Other.pla", reversed(files))
    stage.settings["ID3Reconcile"] = "1"
    stage.write_settings()


def require(condition, what):
    if not condition:
        raise Failed(what)


def make_remote(stage):
    """Gives all paths the name of a share."""
    (stage.host / "host.ini").write_text(
        "[Plugins]\nQuillon=1\n\n[Drives]\nD=../disk\n\\\\shelf\\disk=../disk\n")
    before = dict(stage.settings)
    stage.settings |= {"Reconcile": "0", "MakeRemote": "1", "LibraryRoot": r"\\shelf\disk\Music"}
    stage.write_settings()
    run(stage)
    require(all(row["SoundFile"].startswith(r"\\shelf\disk") for row in song_lists.rows(stage)),
            "the paths have no other drive")
    stage.settings = before | {"LibraryRoot": r"\\shelf\disk\Music"}
    stage.write_settings()


def hinder(stage, mode, in_between):
    settle(stage)
    meant = songs(stage)
    hindered = stage.disk / "Lists" / "Hindered.pla"
    content = hindered.read_bytes()
    os.chmod(hindered, mode)
    run(stage, expected=1)
    now = songs(stage)
    require((stage.disk / "Music/Alder/Album 0/Alder - Song 1.mp3").exists(), "nothing was renamed")
    require(now["Other.pla"] == meant["Other.pla"], "the list beside it names other songs")
    require(now["Hindered.pla"] != meant["Hindered.pla"], "nothing was renumbered")
    require(hindered.read_bytes() == content, "the list was changed")
    told = [line for line in stage.log_messages() if "Hindered.pla" in line]
    require(told, "the log does not name the list")
    run(stage, expected=1)
    in_between(stage)
    os.chmod(hindered, 0o644)
    run(stage)
    require(songs(stage) == meant, f"lists name other songs:\n{meant}\n{songs(stage)}")
    stage.confirm_database()
    lists = {file: file.stat().st_mtime_ns for file in (stage.disk / "Lists").iterdir()}
    run(stage)
    require(lists == {file: file.stat().st_mtime_ns for file in lists}, "a list was written again")


def nothing(_):
    pass


STORIES = {
    "a list that is write-protected": (0o444, nothing),
    "a list that cannot be read": (0o000, nothing),
    "a write-protected list, and all paths get another drive": (0o444, make_remote),
    "an unreadable list, and all paths get another drive": (0o000, make_remote),
}


def main():
    for story, (mode, in_between) in STORIES.items():
        with Stage(sys.argv[1]) as stage:
            try:
                hinder(stage, mode, in_between)
            except Failed as failure:
                print(f"{story}: {failure}")
                return 1
        print(f"{story}: names its songs again")
    return 0


if __name__ == "__main__":
    sys.exit(main())
