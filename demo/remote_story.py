"""The library moves: stored paths are made to fit another machine."""

import shutil

from telling import chapter, require, say

SHARE, COVERS = r"\\attic\music", r"\\attic\covers"
PATHS = "SELECT Tracks.ID, Albums.ID AS Album, ImageFile, SoundFile FROM Albums INNER JOIN Tracks" \
        " ON Albums.CDJID = Tracks.CDJID WHERE Player=1001"
SHOWN = "SELECT Track, SoundFile FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID" \
        " WHERE Albums.Title='Wick #2' ORDER BY Track"


def tell(demo):
    chapter("The library from another machine")
    machine = demo.elsewhere("attic")
    shutil.copytree(demo.host, machine.host)
    host_ini = machine.host / "host.ini"
    machine.choose("LibraryRoot", SHARE + machine.setting("LibraryRoot")[2:])
    machine.choose("AlbumCoverFolder", COVERS + "\\Covers\\")
    machine.choose("MakeRemote", 1)
    host_ini.write_text(host_ini.read_text("utf-8").replace(
        "[Drives]\n", f"[Drives]\n{SHARE}={demo.folder}\n{COVERS}=.\n"), "utf-8")
    say(f"A copy of the host folder, {demo.shown(machine.host)}, stands for another machine. It "
        f"reaches the music as {SHARE} and the covers as {COVERS}: so its settings say, and "
        "MakeRemote=1 gives every stored path that drive.")
    print()
    machine.show(SHOWN)
    before = {row["ID"]: row for row in machine.rows(PATHS)}
    print()
    machine.run()
    print()
    machine.show(SHOWN)
    after = machine.rows(PATHS)
    for row in after:
        old = before[row["ID"]]
        require(row["SoundFile"] == SHARE + old["SoundFile"][2:], f"{row['SoundFile']} is wrong")
        if old["ImageFile"]:
            require(row["ImageFile"] == COVERS + old["ImageFile"][2:], f"{row['ImageFile']} is wrong")
    require(len(after) == len(before) > 0, "tracks are missing")

    machine.reconcile()
    require(machine.rows(PATHS) == after, "the second remote run changed paths")
    machine.choose("MakeRemote", 0)
    machine.reconcile()
    require(machine.rows(PATHS) == after, "a reconciliation over there changed paths")
    print()
    say(f"All {len(after)} tracks are re-pointed. A second such run changes nothing, and a "
        "reconciliation on that machine finds every file and cover where its database has it.")
