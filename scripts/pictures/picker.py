"""Pictures of the album picker's pages: the demo's collection with its covers, in a browser."""

import subprocess

import covers
import sample_library
from serving import Server
from webdriver import Browser

# One album stays without a cover.
WITHOUT_COVER = "Ballast"
DESKTOP, PHONE = (1280, 900), (390, 844)


def make_pages(program, folder):
    host = folder / "shelf"

    def quillon(*arguments):
        subprocess.run([program, *arguments], check=True, stdout=subprocess.DEVNULL)

    sample_library.make(folder / "Music")
    quillon("init", host, "--music", folder / "Music")
    for artist, albums in sample_library.COLLECTION.items():
        for album in albums:
            if album != WITHOUT_COVER:
                (host / "Covers" / f"{artist} - {album}.gif").write_bytes(covers.draw(artist, album))
    quillon("run", "--host", host, "--view", "plain")
    settings = host / "Quillon.ini"
    settings.write_text("[NPFrame]\nAlbumPicker=1\nPickerMinimum=2\nReconcile=0\n"
                        + settings.read_text("cp1252").replace("[NPFrame]\n", "", 1), "cp1252")
    quillon("run", "--host", host, "--view", "plain")
    return host


def take(program, folder, pictures):
    """Makes the pictures; their names."""
    host = make_pages(program, folder)
    shots = (("picker.png", DESKTOP, "light", "AlbumPicker0.asp"),
             ("picker-phone.png", PHONE, "dark", "AlbumPicker1.asp"))
    with Server(program, host) as server, Browser() as browser:
        for name, (width, height), scheme, page in shots:
            browser.prefer(scheme)
            browser.resize(width, height)
            browser.open(f"{server.address}/Quillon/AlbumPicker/{page}")
            browser.wait("all covers", lambda: browser.run(
                "for (const image of document.images) image.loading = 'eager';"
                "return [...document.images].every(image => image.complete)"))
            # What stands around is the preview server's.
            browser.run("for (const bar of document.querySelectorAll('.preview-bar')) bar.remove();")
            browser.screenshot(pictures / name, most=height)
    return [name for name, *_ in shots]
