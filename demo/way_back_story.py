"""Knowing before, knowing after, going back: an album is renamed by hand."""

import shutil

from telling import chapter, require, say

OF_ALBUM = "SELECT ID, Title, Rating1, SoundFile FROM Tracks WHERE CDJID='{}' ORDER BY ID"
DUMP = {"Albums": "SELECT * FROM Albums ORDER BY ID", "Tracks": "SELECT * FROM Tracks ORDER BY ID"}


def rows(demo):
    return {table: demo.rows(statement) for table, statement in DUMP.items()}


def chosen_album(demo):
    """An album of the library with at least three songs, and its folder."""
    for album in demo.rows("SELECT CDJID, Artist, Title FROM Albums WHERE Player=1001 AND Tracks>2"
                           " ORDER BY ID"):
        folder = demo.music / album["Artist"] / album["Title"]
        if folder.is_dir():
            return album, folder
    raise AssertionError("the library has no such album")


def set_host(demo, old, new):
    settings = demo.host / "host.ini"
    text = settings.read_text()
    require(old in text, f"host.ini has no {old}")
    settings.write_text(text.replace(old, new))


def show(demo, *arguments, status=0, most=24):
    print(f"$ quillon {' '.join(arguments)} --host {demo.shown(demo.host)}")
    text = demo.quillon(*arguments, "--host", demo.host, status=status)
    lines = text.splitlines()
    print("\n".join(lines[:most]))
    if len(lines) > most:
        print(f"... and {len(lines) - most} more lines")
    print(flush=True)
    return text


def tell(demo):
    chapter("Before, after, back")
    set_host(demo, "FollowMovedFiles=0", "FollowMovedFiles=1")
    set_host(demo, "KeepDays=0", "KeepDays=14")
    demo.reconcile()
    album, folder = chosen_album(demo)
    songs = OF_ALBUM.format(album["CDJID"])
    demo.quillon("db", "exec", demo.database,
                 f"UPDATE Tracks SET Rating1=5 WHERE CDJID='{album['CDJID']}'")
    demo.reconcile()
    before = rows(demo)
    better = folder.with_name(folder.name + " (Remastered)")
    shutil.move(folder, better)
    say(f"From now on rows follow music that is moved. All songs of {album['Title']} got a rating, "
        f"and then somebody renamed the folder to {better.name}. What would a run do?")
    print()
    told = show(demo, "preview", status=1)
    require(better.name in told, "the preview does not name the folder")
    require(rows(demo) == before, "the preview changed rows")

    demo.run()
    after = demo.rows(songs)
    require(len(after) > 2 and all(row["Rating1"] == 5 for row in after), "ratings were lost")
    require(all(better.name in row["SoundFile"] for row in after), "rows have not followed")
    print()
    say("The album kept its row, and its songs theirs, with their ratings:")
    print()
    demo.show(songs)
    print()
    show(demo, "changes")
    report = demo.host / "Reports" / "last.html"
    require(better.name in report.read_text("utf-8"), "the report does not tell of it")
    say(f"The same as a page for a browser: {demo.shown(report)}. And if all that was a mistake:")
    print()
    show(demo, "undo", "--yes")
    require(rows(demo) == before, "not all rows are as before")
    shutil.move(better, folder)
    demo.reconcile()
    require(rows(demo) == before, "a run after that changed rows")
    say("The rows are what they were, key by key. The folder was renamed by hand, so the hand "
        "gave it its name back; the next run found nothing to do.")
    set_host(demo, "FollowMovedFiles=1", "FollowMovedFiles=0")
    set_host(demo, "KeepDays=14", "KeepDays=0")
