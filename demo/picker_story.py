"""The part of the demo that makes covers and web pages to pick albums from."""

import re
from urllib.parse import unquote

import covers
import sample_library
from telling import chapter, require, say

# This one stays without a cover, to show what the pages do then.
WITHOUT_COVER = "Ballast"
FEWEST_TRACKS = 3


def draw_covers(demo):
    """Draws covers and ties them to their albums; how many."""
    folder = demo.host / "Covers"
    drawn = 0
    for artist, albums in sample_library.COLLECTION.items():
        for album in albums:
            if album == WITHOUT_COVER:
                continue
            file = f"{artist} - {album}.gif"
            (folder / file).write_bytes(covers.draw(artist, album))
            path = "H:\\Covers\\" + file.replace("'", "''")
            title, name = album.replace("'", "''"), artist.replace("'", "''")
            demo.quillon("db", "exec", demo.database,
                         f"UPDATE Albums SET ImageFile='{path}' WHERE Title='{title}' "
                         f"AND Artist='{name}' AND Player=1001")
            drawn += 1
    return folder, drawn


def tell(demo):
    chapter("Web pages to pick albums from")
    folder, drawn = draw_covers(demo)
    demo.choose("AlbumPicker", 1)
    demo.choose("PickerMinimum", FEWEST_TRACKS)
    say(f"{drawn} covers were drawn into {demo.shown(folder)} and tied to their albums. With "
        f"AlbumPicker=1 and PickerMinimum={FEWEST_TRACKS} a run makes an index and pages of the "
        "albums that have at least so many tracks.")
    print()
    demo.run()
    demo.choose("AlbumPicker", 0)

    pages = demo.host / "HTML" / "Quillon" / "AlbumPicker"
    index = (pages / "AlbumPicker0.asp").read_text("ascii")
    cards = re.findall(r"<li(?: id='\w+')?><a href='", index)
    thumbnails = re.findall(r"<img class='picker-cover' src='(\S+)'", index)
    wanted = demo.rows(f"SELECT DISTINCT Albums.CDJID FROM Albums INNER JOIN Tracks "
                       f"ON Albums.CDJID = Tracks.CDJID WHERE Albums.Tracks >= {FEWEST_TRACKS}")
    require(len(cards) == len(wanted), "the index does not show every album")
    for cover in thumbnails:
        require((demo.host / "HTML" / unquote(cover).lstrip("/")).is_file(), f"{cover} is missing")
    count = len(list(pages.glob("AlbumPicker[0-9]*.asp"))) - 1
    say(f"{len(cards)} albums on {count} pages in {demo.shown(pages)}, covers beside them. "
        f"\"{WITHOUT_COVER}\" has none and shows its initials instead. They are pages for the "
        "host's web server; without one, this shows them in a browser:")
    print(f"  {demo.shown(demo.program)} serve --host {demo.shown(demo.host)}")
