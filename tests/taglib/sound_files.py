"""Music files made by lame and ffmpeg and tagged by these, id3v2, eyeD3 and mutagen: a few seconds of
sound each, in the forms and with the kinds of tags that people have."""

import array
import math
import subprocess
import sys
import wave
from dataclasses import dataclass

from mutagen import id3
from mutagen.apev2 import APEv2

SECONDS = 3
RATE = 44100

PLAIN = {"title": "Dawn", "artist": "Alder", "album": "First Light", "track": "3",
         "year": "1999", "genre": "Rock", "comment": "made of tones"}
LONG = PLAIN | {"title": "A title that is longer than thirty characters are",
                "genre": "Synthpop of my own"}
ACCENTS = PLAIN | {"title": "Ça va très bien", "artist": "Björk Ågren", "album": "Žlutý"}
JAPANESE = PLAIN | {"title": "夜明けの歌", "artist": "宇多田", "album": "はじめて"}


@dataclass
class Music:
    name: str
    sound: str
    tags: dict


def run(*command):
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: {done.stderr}")
    return done.stdout


def make_wave(path):
    samples = array.array("h", (int(9000 * math.sin(i / 17) * math.sin(i / 9000))
                                for i in range(RATE * SECONDS)))
    with wave.open(str(path), "wb") as sound:
        sound.setparams((1, 2, RATE, 0, "NONE", ""))
        sound.writeframes(samples.tobytes())


SOUNDS = {
    "cbr": ("lame", "--quiet", "-b", "64"),
    "cbr-bare": ("lame", "--quiet", "-t", "-b", "48"),
    "vbr": ("lame", "--quiet", "-V", "6"),
    "abr": ("lame", "--quiet", "--abr", "80"),
    "mpeg2": ("lame", "--quiet", "--resample", "22.05", "-b", "32"),
    "ffmpeg": ("ffmpeg", "-v", "error", "-b:a", "64k", "-write_xing", "0"),
}


def encode(sound, wave_file, target, *options):
    program, *before = SOUNDS[sound]
    if program == "lame":
        run(program, *before, *options, wave_file, target)
    else:
        run(program, *before[:2], "-i", wave_file, *before[2:], "-id3v2_version", "0", *options,
            target)


def by_id3v2(version):
    def tag(path, tags):
        run("id3v2", version, "-t", tags["title"], "-a", tags["artist"], "-A", tags["album"],
            "-y", tags["year"], "-T", tags["track"] + "/12", "-c", tags["comment"], "-g",
            "17" if tags["genre"] == "Rock" else tags["genre"], path)
    return tag


def by_eyed3(version, encoding):
    def tag(path, tags):
        run("eyeD3", "-Q", f"--to-v{version}", f"--encoding={encoding}", "-t", tags["title"], "-a",
            tags["artist"], "-A", tags["album"], "-n", tags["track"], "-N", "12", "-d", "2", "-D",
            "3", "-Y", tags["year"], "-G", tags["genre"], "-c", tags["comment"], path)
    return tag


def by_mutagen(version, encoding, old=0):
    def tag(path, tags):
        frames = id3.ID3()
        for kind, name in ((id3.TIT2, "title"), (id3.TPE1, "artist"), (id3.TALB, "album"),
                           (id3.TRCK, "track"), (id3.TDRC, "year"), (id3.TCON, "genre")):
            frames.add(kind(encoding=encoding, text=tags[name]))
        frames.add(id3.TPOS(encoding=0, text="1/2"))
        frames.add(id3.COMM(encoding=encoding, lang="eng", desc="", text=tags["comment"]))
        frames.add(id3.COMM(encoding=0, lang="eng", desc="iTunNORM", text="000012"))
        frames.add(id3.TXXX(encoding=0, desc="mood", text="quiet"))
        frames.add(id3.APIC(encoding=0, mime="image/png", type=3, desc="", data=b"\x89PNG" * 9000))
        if version == 3:
            frames.update_to_v23()
        frames.save(path, v1=old, v2_version=version)
    return tag


def by_ape(path, tags):
    ape = APEv2()
    for key, name in (("Title", "title"), ("Artist", "artist"), ("Album", "album"),
                      ("Track", "track"), ("Year", "year"), ("Genre", "genre"),
                      ("Comment", "comment")):
        ape[key] = tags[name]
    ape.save(path)


def by_ffmpeg(version):
    def tag(path, tags):
        taken = path.with_suffix(".tagged.mp3")
        words = [word for key, value in tags.items()
                 for word in ("-metadata", f"{'date' if key == 'year' else key}={value}")]
        run("ffmpeg", "-v", "error", "-i", path, "-c", "copy", *words, "-id3v2_version", version,
            taken)
        taken.replace(path)
    return tag


def both(first, second):
    def tag(path, tags):
        first(path, tags)
        second(path, tags)
    return tag


def nothing(_path, _tags):
    pass


TAGGERS = {
    "bare": (nothing, (PLAIN,)),
    "id3v2-1": (by_id3v2("-1"), (PLAIN, LONG)),
    "id3v2-2": (by_id3v2("-2"), (PLAIN, LONG)),
    "eyed3-1.1": (by_eyed3("1.1", "latin1"), (PLAIN,)),
    "eyed3-2.3": (by_eyed3("2.3", "utf16"), (JAPANESE,)),
    "eyed3-2.4": (by_eyed3("2.4", "utf8"), (JAPANESE,)),
    "mutagen-3-latin1": (by_mutagen(3, 0), (LONG,)),
    "mutagen-3-utf16": (by_mutagen(3, 1), (ACCENTS, JAPANESE, LONG)),
    "mutagen-4-latin1": (by_mutagen(4, 0), (PLAIN,)),
    "mutagen-4-utf16": (by_mutagen(4, 1), (JAPANESE,)),
    "mutagen-4-utf16be": (by_mutagen(4, 2), (ACCENTS,)),
    "mutagen-4-utf8": (by_mutagen(4, 3, old=2), (ACCENTS, JAPANESE, LONG)),
    "ape": (by_ape, (LONG, JAPANESE)),
    "ape-and-1": (both(by_ape, by_id3v2("-1")), (LONG,)),
    "ape-and-2": (both(by_ape, by_mutagen(4, 3)), (LONG,)),
    "ffmpeg-3": (by_ffmpeg(3), (JAPANESE,)),
    "ffmpeg-4": (by_ffmpeg(4), (ACCENTS,)),
}
LAME = {
    "lame-1": ("--id3v1-only",),
    "lame-2": ("--id3v2-only",),
    "lame-both": ("--add-id3v2", "--pad-id3v2-size", "9000"),
    "lame-2-utf16": ("--id3v2-only", "--id3v2-utf16"),
}


def make(folder):
    """Makes the files in the folder, each kind of tag on one of the sounds in turn."""
    wave_file = folder / "sound.wav"
    make_wave(wave_file)
    for sound in SOUNDS:
        encode(sound, wave_file, folder / f"{sound}.plain.mp3")
    made = []
    for name, (tagger, texts) in TAGGERS.items():
        for tags in texts:
            sound = list(SOUNDS)[len(made) % len(SOUNDS)]
            path = folder / f"{len(made):02}-{name}-{sound}.mp3"
            path.write_bytes((folder / f"{sound}.plain.mp3").read_bytes())
            tagger(path, tags)
            made.append(path)
    for name, options in LAME.items():
        path = folder / f"{len(made):02}-{name}.mp3"
        words = [word for letter, key in (("t", "title"), ("a", "artist"), ("l", "album"),
                                          ("y", "year"), ("n", "track"), ("c", "comment"),
                                          ("g", "genre"))
                 for word in (f"--t{letter}", PLAIN[key])]
        encode("vbr", wave_file, path, *options, *words)
        made.append(path)
    return made
