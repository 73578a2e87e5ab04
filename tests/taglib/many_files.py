"""A music library of 200 files in the shapes that people have: albums of one and several discs, of
several artists, with tags of all kinds and none, with pictures, and music that waits to be added. Few
sounds are encoded; the others are copies of them, tagged here."""

from dataclasses import dataclass
from pathlib import Path

from mutagen import id3

import sound_files

COUNT = 200
FRONT_COVER = 3


@dataclass
class Made:
    path: Path
    sound: str  # a file with the same sound, for who measures lengths


class Shelf:
    """Puts copies of the plain sounds into albums, one after the other."""

    def __init__(self, sounds):
        self.sounds = [(str(path), path.read_bytes()) for path in sounds]
        self.made = []

    def add(self, path, tag):
        name, content = self.sounds[len(self.made) % len(self.sounds)]
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        tag(path)
        self.made.append(Made(path, name))

    def take(self, path, source):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(source.read_bytes())
        self.made.append(Made(path, str(path)))


def tagged(version=4, encoding=3, old=0, picture=None, disc=None, **texts):
    """A tag by mutagen: what is in `texts`, and a picture (its type and bytes)."""
    def tag(path):
        frames = id3.ID3()
        for kind, name in ((id3.TIT2, "title"), (id3.TPE1, "artist"), (id3.TALB, "album"),
                           (id3.TRCK, "track"), (id3.TCON, "genre")):
            if name in texts:
                frames.add(kind(encoding=encoding, text=str(texts[name])))
        if disc:
            frames.add(id3.TPOS(encoding=0, text=str(disc)))
        if picture:
            frames.add(id3.APIC(encoding=0, mime=picture[0], type=FRONT_COVER, desc="",
                                data=picture[1]))
        frames.save(path, v1=old, v2_version=version)
    return tag


def old_alone(**texts):
    """A tag of version 1 and nothing else."""
    def tag(path):
        tagged(old=2, **texts)(path)
        id3.delete(path, delete_v1=False, delete_v2=True)
    return tag


def untagged(_path):
    pass


def pictures(folder):
    """A small JPEG and a small PNG."""
    made = []
    for name, kind in (("cover.jpg", "image/jpeg"), ("cover.png", "image/png")):
        sound_files.run("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=size=64x64",
                        "-frames:v", "1", folder / name)
        made.append((kind, (folder / name).read_bytes()))
    return made


def of_other_programs(shelf, music, made, title_of):
    """An album for each file that other programs have tagged, by names that end after thirty
    letters."""
    for path in made:
        title = title_of(path)[:30].strip() or "Untagged"
        shelf.take(music / "Alder" / path.stem / f"Alder - {title}.mp3", path)


def of_discs(shelf, folder, artist, album, count, jpeg):
    for disc in (1, 2):
        for track in range(1, count + 1):
            title = "Intro" if track == 1 else f"Part {track} of disc {disc}"
            # Times and names tell another order than tags.
            path = folder / f"CD{disc}" / f"{artist} - {title}.mp3"
            shelf.add(path, tagged(3, 1, artist=artist, album=album, title=title,
                                   track=f"{track}/{count}", disc=f"{disc}/2", genre="Rock",
                                   picture=jpeg if track == 2 else None))


def make(folder, title_of):
    """Makes D:\\Music and D:\\New below the folder; all files, and the plain sounds."""
    kinds = folder / "kinds"
    kinds.mkdir()
    made = sound_files.make(kinds)
    shelf = Shelf([kinds / f"{sound}.plain.mp3" for sound in sound_files.SOUNDS])
    jpeg, png = pictures(kinds)
    music, new = folder / "Music", folder / "New"
    of_other_programs(shelf, music, made, title_of)
    of_discs(shelf, music / "Birch" / "Long Road", "Birch", "Long Road", 20, jpeg)
    for track in range(1, 21):
        artist, title = f"Guest {track % 7}", f"Hit {track}"
        shelf.add(music / "Various" / "Hits" / f"{artist} - {title}.mp3",
                  tagged(4, 3, artist=artist, album="Hits", title=title, track=track,
                         genre="Synthpop of my own", picture=png))
    for track in range(1, 11):
        texts = sound_files.JAPANESE | {"title": f"夜明けの歌{track}", "track": track}
        shelf.add(music / "Elm" / "Songs" / f"{track:02}.mp3",
                  tagged(4, 1, **(texts | {"artist": "Elm", "album": "Songs"})))
    for track in range(1, 21):
        texts = {"artist": "Cedar", "title": f"Ring {track}", "track": track, "genre": "Jazz"}
        shelf.add(music / "Cedar" / "Old" / f"{track:02} - x.mp3",
                  old_alone(**texts, album="Old"))
        shelf.add(music / "Cedar" / "Ape" / f"Cedar - Ring {track}.mp3",
                  lambda path, told=texts: sound_files.by_ape(
                      path, {key: str(value) for key, value in told.items()}
                      | {"album": "Ape", "year": "2001", "comment": "of an ape"}))
        long = f"Ring {track} that has more letters than an old tag can hold"
        shelf.add(music / "Cedar" / "Both" / f"Cedar - {long[:30].strip()}.mp3",
                  tagged(4, 3, old=2, **(texts | {"title": long, "album": "Both"})))
    of_discs(shelf, new / "Fir" / "Two", "Fir", "Two", 12, jpeg)
    for track in range(1, COUNT - len(shelf.made) + 1):
        shelf.add(music / "Dogwood" / "Bare" / f"{track:02} - Song {track}.mp3", untagged)
    return shelf.made
