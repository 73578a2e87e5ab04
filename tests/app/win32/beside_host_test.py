#!/usr/bin/env python3
"""beside_host_test.py PROGRAM WINDOWS_PROGRAM SERVERS   the program for Windows beside a home-automation
host. The object of the tests' own automation server, which lies in the folder SERVERS as a library and as
a program, stands in for the host's. PROGRAM looks at what the runs have made."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scenarios"))

from stage import ROOT, Failed, Stage, WithErrorsInAFile, output_of  # noqa: E402

import sound_files  # noqa: E402

RUNNER = ROOT / "scripts" / "run-windows-program"
CLASSES = r"HKEY_LOCAL_MACHINE\Software\Classes"
OBJECT = "Homeseer.application"
CLASS = "{5B0E6E0A-3C3E-4B0B-9B57-6A3B1E0C2D41}"  # that of the tests' automation server

# What a run asks for first: each setting with its default, in this order.
SETTINGS = """FromFilesPath| LibraryRoot| ExcludeList| PlayListPath| PlayListPath2| Nirvis_CDJ_DB|
AlbumCoverFolder| PickerFormatOption|0 ID3ActionOption|0 ID3VersionOption|0
coverPath|/Quillon/albumcovers/ ImagesWide|5 ImagesHigh|3 PickerMinimum|8 ArtistThreshold|0
MaxPlaylistLength|100 LibraryDepthOption|0 FlatStructure|0 ReconcileOption|0 ArtistPlaylist|1
GenrePlaylist|1 PlaylistsOnly|0 ID3Reconcile|1 AddFiles|0 ID3Write|0 ID3Update|0 Reconcile|0
AlbumPicker|0 PlaToM3u|0 M3uToPla|0 MakeRemote|0 PlaylistByAlbumOption|0
RandomizePlaylist|0""".split()


def there(path):
    """A path of this system as a Windows program says it."""
    return "Z:" + str(path).replace("/", "\\")


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, there is {actual!r}")


class Registration:
    """The object, known to Windows while this lasts. `kind`: where the server runs."""

    def __init__(self, stage, kind, server):
        self.folder = stage.work
        self.keys = [(OBJECT, "A host for tests"), (rf"{OBJECT}\CLSID", CLASS),
                     (rf"CLSID\{CLASS}", "A host for tests"), (rf"CLSID\{CLASS}\{kind}", there(server))]

    def __enter__(self):
        self.change([f'[{CLASSES}\\{key}]\n@="{self.quoted(value)}"\n' for key, value in self.keys])

    def __exit__(self, kind, value, trace):
        self.remove()

    def remove(self):
        self.change([f"[-{CLASSES}\\{OBJECT}]\n", f"[-{CLASSES}\\CLSID\\{CLASS}]\n"])

    @staticmethod
    def quoted(text):
        return text.replace("\\", "\\\\")

    def change(self, lines):
        file = self.folder / "change.reg"
        file.write_text("REGEDIT4\n\n" + "\n".join(lines), "ascii", newline="\r\n")
        output_of([RUNNER, "reg", "import", there(file)], kind=WithErrorsInAFile)


class BesideHost:
    """A stage whose library has one song, and a host that answers from a file and notes its calls."""

    def __init__(self, stage):
        self.stage = stage
        self.journal = stage.work / "calls"
        sound_files.write(str(stage.disk / "Music/Alder/First/01 - Dawn.mp3"), sound_files.silence(0.1),
                          1500000000)
        self.answers = {"Nirvis_CDJ_DB": there(stage.database), "LibraryRoot": there(stage.disk / "Music"),
                        "PlayListPath": there(stage.disk / "Lists"), "Reconcile": "1", "ID3Reconcile": "0",
                        "ArtistPlaylist": "0", "GenrePlaylist": "0"}

    def run(self, plugins="Other,Quillon"):
        """The end of a run for which no host folder is named, and the calls that the host got."""
        lines = ["[Server]", f"Plugins={plugins}", f"AppPath={there(self.stage.host)}", "[NPFrame]",
                 *(f"{key}={value}" for key, value in self.answers.items())]
        Path(f"{self.journal}.ini").write_text("\n".join(lines) + "\n", "ascii", newline="\r\n")
        self.journal.unlink(missing_ok=True)
        end = self.stage.call("run", "--view", "plain",
                              environment={"QUILLON_TEST_SERVER": there(self.journal)})
        calls = self.journal.read_text("utf-8").splitlines() if self.journal.exists() else []
        return end, calls

    def titles(self):
        return [row["Title"] for row in self.stage.query("SELECT Title FROM Tracks")]


def messages(calls):
    return [call for call in calls if call.startswith("WriteLog|")]


def without_object(host):
    end, calls = host.run()
    expect("status without the object", 2, end.returncode)
    expect("calls without the object", [], calls)
    for words in (f"no object {OBJECT} is registered", "--host DIR", "QUILLON_HOST"):
        if words not in end.stderr:
            raise Failed(f"\"{words}\" is not in: {end.stderr}")


def without_plugin(host):
    before = host.stage.database.read_bytes()
    end, calls = host.run(plugins="Other,quillon")
    expect("status without the plug-in", 2, end.returncode)
    expect("log without the plug-in",
           ["WriteLog|Quillon|Quillon must be enabled to perform management activities"], messages(calls))
    expect("whether the database is what it was", True, host.stage.database.read_bytes() == before)


def whole_run(host):
    end, calls = host.run()
    expect(f"status ({end.stdout}{end.stderr})", 0, end.returncode)
    asked = [call for call in calls if call.startswith("GetINISetting|NPFrame|")]
    expect("settings that are asked for", [f"GetINISetting|NPFrame|{setting}|Quillon.ini" for setting in SETTINGS],
           asked[:len(SETTINGS)])
    walk = calls.index("GetPlugins")
    expect("the walk over the plug-ins", ["GetPlugins", "_NewEnum", "Name", "Name"], calls[walk:walk + 4])
    expect("the last call", "(released)", calls[-1])
    expect("rows", ["Dawn"], host.titles())


def tells_the_log(host):
    (host.stage.disk / "Music").rename(host.stage.disk / "Away")
    end, calls = host.run()
    (host.stage.disk / "Away").rename(host.stage.disk / "Music")
    expect("status without the library", 1, end.returncode)
    expect("log without the library",
           [f"WriteLog|Quillon|RefreshDatabase, No folder at library root {there(host.stage.disk / 'Music')}"],
           messages(calls))
    expect("rows", ["Dawn"], host.titles())


def main():
    program, windows_program, servers = sys.argv[1:]
    try:
        with Stage(program) as stage:
            stage.windows_program = windows_program
            host = BesideHost(stage)
            library, server = (
                Registration(stage, kind, Path(servers) / f"automation_server.{suffix}")
                for kind, suffix in (("InprocServer32", "dll"), ("LocalServer32", "exe")))
            # One that was killed leaves the object behind.
            library.remove()
            without_object(host)
            with library:
                without_plugin(host)
                whole_run(host)
                tells_the_log(host)
            with server:
                whole_run(host)
            without_object(host)
            stage.confirm_database()
    except Failed as failure:
        print(failure)
        return 1
    print("the host was asked as it expects to be, and was told")
    return 0


if __name__ == "__main__":
    sys.exit(main())
