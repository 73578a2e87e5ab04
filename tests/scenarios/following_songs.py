#!/usr/bin/env python3
"""following_songs.py PROGRAM   changes a library again and again and runs the program after each change.

Which songs a playlist names is read by song_lists.py, without the program. After each run every list
must name the songs it named before, in the same order, without those whose files went; a further run
must change neither a row nor a byte of a list.
"""

import os
import random
import sys

from stage import Failed, Stage

import song_lists
import sound_files

ARTISTS, ALBUMS, TRACKS, LISTS, ROUNDS = 6, 3, 6, 12, 5
FIRST_DAY, DAY = 1500000000, 86400


def add_song(stage, chance, artist, album, title):
    path = stage.disk / f"Music/Artist {artist}/Album {album}/{title}.mp3"
    # Files of any age, so that a new one pushes others to another number.
    when = FIRST_DAY + chance.randrange(3000) * DAY
    sound_files.write(path, sound_files.silence(0.05) + sound_files.tag(artist="x"), when)


def make_library(stage, chance):
    for artist in range(ARTISTS):
        for album in range(ALBUMS):
            for track in range(TRACKS):
                add_song(stage, chance, artist, album, f"{track:02} - Song {track}")


def change_library(stage, chance, number):
    files = sorted((stage.disk / "Music").rglob("*.mp3"))
    for file in chance.sample(files, 5):
        file.unlink()
    for file in chance.sample([file for file in files if file.exists()], 10):
        when = FIRST_DAY + chance.randrange(3000) * DAY
        os.utime(file, (when, when))
    for extra in range(8):
        add_song(stage, chance, chance.randrange(ARTISTS), chance.randrange(ALBUMS),
                 f"{number}{extra} - New")


def run(stage):
    status, output, errors = stage.reconcile()
    if status != 0:
        raise Failed(f"exit status {status}\n{output}{errors}")


def follow(stage):
    chance = random.Random(7)
    make_library(stage, chance)
    run(stage)
    run(stage)
    files = sorted(row["SoundFile"] for row in song_lists.rows(stage))
    for number in range(LISTS):
        song_lists.write(stage, f"List {number}.pla", chance.sample(files, 20))
    named = song_lists.songs(stage)
    moved = 0
    for number in range(ROUNDS):
        before = song_lists.contents(stage)
        change_library(stage, chance, number)
        run(stage)
        there = {row["SoundFile"] for row in song_lists.rows(stage)}
        expected = {name: [file for file in files if file in there] for name, files in named.items()}
        named = song_lists.songs(stage)
        if named != expected:
            raise Failed(f"round {number}: a playlist names other songs\n{expected}\n{named}")
        after = song_lists.contents(stage)
        moved += sum(after[name] != before[name] for name in after)

        run(stage)  # new songs come to their final numbers
        if song_lists.songs(stage) != named:
            raise Failed(f"round {number}: a playlist names other songs after a second run")
        rows, lists = stage.all_rows(), song_lists.contents(stage)
        run(stage)
        if stage.all_rows() != rows or song_lists.contents(stage) != lists:
            raise Failed(f"round {number}: a run over an unchanged library changed something")
    stage.confirm_database()
    return moved


def main():
    with Stage(sys.argv[1]) as stage:
        try:
            moved = follow(stage)
        except Failed as failure:
            print(failure)
            return 1
    print(f"{LISTS} playlists kept their songs in {ROUNDS} rounds; {moved} times one was rewritten")
    return 0 if moved > LISTS else 1


if __name__ == "__main__":
    sys.exit(main())
