#!/usr/bin/env python3
"""picker_test.py PROGRAM FOLDER   the album picker as a person meets it: in a browser, through
`quillon serve`, with links and with forms, with usual titles and with hostile ones. Screenshots of
the pages at desktop and phone width are left in FOLDER."""

import shutil
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "app" / "serve"))

import player
from library import Library, hostile_albums, plain_albums
from serving import Server
from webdriver import Browser, BrowserError

PER_PAGE = 6
INDEX = "/Quillon/AlbumPicker/AlbumPicker0.asp"
DESKTOP, PHONE = (1280, 900), (390, 844)

# Once all images are there or known to be missing.
PAGE_FACTS = """
for (const image of document.images) image.loading = 'eager';
if (![...document.images].every(image => image.complete)) return null;
const all = selector => [...document.querySelectorAll(selector)];
return {
    images: all('img').map(image => [image.getAttribute('src'), image.naturalWidth > 0, image.alt]),
    texts: all('bdi, h2').map(element => element.textContent),
    numbered: all('nav a').filter(link => link.textContent.startsWith('Page '))
                          .map(link => [link.textContent, link.pathname]),
    ids: all('[id]').map(element => element.id),
    reading: [document.characterSet, document.compatMode],
};
"""


class Failed(Exception):
    """What was expected did not come true; the text says what."""


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, got {actual!r}")


def page_title(number):
    return f"Album Picker Page {number}" if number else "Album Picker Index Page"


class Visit:
    """One set of pages and all that can be done with it."""

    def __init__(self, browser, server, library, forms, screenshots):
        self.browser, self.server, self.library = browser, server, library
        self.forms, self.screenshots = forms, screenshots
        self.pages = -(-len(library.albums) // PER_PAGE)
        self.requests = 0

    # Looking

    def arrive(self, number):
        self.browser.wait(f"page {number}", lambda: self.browser.title() == page_title(number))
        self.browser.wait("its end", lambda: self.browser.run("return document.readyState") == "complete")

    def albums_on(self, number):
        first = (number - 1) * PER_PAGE
        return self.library.albums[first:first + PER_PAGE] if number else self.library.albums

    def look(self, number):
        """What must be true of every page."""
        self.arrive(number)
        page = self.browser.wait("all images", lambda: self.browser.run(PAGE_FACTS))
        albums = self.albums_on(number)
        expect("images", len(albums), len(page["images"]))
        for source, loaded, alternative in page["images"]:
            expect(f"image {source} is shown", True, loaded)
            expect(f"image {source} has an alternative text", True, bool(alternative))
        expect("texts", sorted(self.texts_on(number)), sorted(page["texts"]))
        expect("numbered links", [[f"Page {other}", INDEX.replace("0.asp", f"{other}.asp")]
                                  for other in range(1, self.pages + 1)], page["numbered"])
        expect("places that are there twice", len(page["ids"]), len(set(page["ids"])))
        expect("encoding and mode", ["windows-1252", "CSS1Compat"], page["reading"])
        self.is_calm()

    def texts_on(self, number):
        for album in self.albums_on(number):
            yield album.artist
            yield album.title
            if number:
                yield from album.tracks

    def is_calm(self):
        # A message box would have stopped every call since it came.
        expect("messages of the console", [], [entry["message"] for entry in self.browser.console()])

    def structure(self):
        """The page's elements and the names of their attributes."""
        return self.browser.run("return [...document.querySelectorAll('*')].map(element => "
                                "[element.localName, ...element.getAttributeNames()].join(' '))")

    # Moving

    def navigation(self, name):
        """What leads to another page under this name, in the page's bar."""
        if self.forms and not name.startswith("Page "):
            return self.browser.all(f"nav input[type=submit][value='{name}']")
        return self.browser.all(f"//nav//a[normalize-space()='{name}']", "xpath")

    def go(self, name, number):
        found = self.navigation(name)
        expect(f"ways called {name}", 1, len(found))
        found[0].click()
        self.look(number)

    def walk(self):
        """All ways between the pages; the structure of each page."""
        structures = []
        self.browser.open(self.server.address + "/")
        self.look(0)
        structures.append(self.structure())
        self.go("First", 1)
        for number in range(1, self.pages + 1):
            expect(f"Previous on page {number}", int(number > 1), len(self.navigation("Previous")))
            expect(f"Next on page {number}", int(number < self.pages), len(self.navigation("Next")))
            structures.append(self.structure())
            if number < self.pages:
                self.go("Next", number + 1)
        for number in range(self.pages - 1, 0, -1):
            self.go("Previous", number)
        self.go("Last", self.pages)
        self.go("Index", 0)
        self.go("Last", self.pages)
        self.go("Album Listing" if self.forms else "Back to Album Listing", 0)
        for number in range(1, self.pages + 1):
            self.go(f"Page {number}", number)
        return structures

    def open(self, number):
        self.browser.open(self.server.address + INDEX.replace("0.asp", f"{number}.asp"))
        self.arrive(number)

    def thumbnails_lead_to_albums(self):
        for position in range(5, len(self.library.albums), 7):
            self.open(0)
            self.browser.all(".picker-index a")[position].click()
            self.arrive(position // PER_PAGE + 1)
            top = self.browser.run("return document.querySelector(':target').querySelector('h2')"
                                   ".textContent")
            expect("album at the place", self.library.albums[position].title, top)

    # Asking

    def place(self, position):
        self.open(position // PER_PAGE + 1)
        return f"//td[@id='album{position + 1}']"

    def control(self, place, action):
        if self.forms:
            return f"{place}//input[@type='submit'][@value='{action}']"
        return f"{place}//a[contains(@href, 'ClientAction={action}&')]"

    def ask(self, control, sentence, *sent):
        """Clicks, and looks at what the player was asked for."""
        self.requests += 1
        expect("request", [str(self.requests), sentence, *sent], player.ask(self.browser, control))
        self.is_calm()

    def ask_for_music(self):
        for position in range(0, len(self.library.albums), 7):
            album = self.library.albums[position]
            name = f"{album.title} by {album.artist}"
            for action, sentence in (("add", f"Add {name} to the playlist"),
                                     ("next", f"Play {name} next"), ("play", f"Play {name} now")):
                self.ask(self.control(self.place(position), action), sentence,
                         f"ClientAction={action}", f"CDJID={album.cdjid}", "ref=0")
            track = 1 + position // 3 % len(album.tracks)
            row = f"{self.place(position)}//table[@class='picker-tracks']//tr[{track + 1}]"
            control = f"{row}//input[@type='submit']" if self.forms else f"{row}//a"
            self.ask(control, f"Add track {track}, {album.tracks[track - 1]}, of {name} to the playlist",
                     "ClientAction=add", f"CDJID={album.cdjid}", f"ref={track}")

    def ask_for_the_rest(self, playlist):
        for number in (0, self.pages):
            self.open(number)
            clear = ("//nav//input[@name='clear']" if self.forms
                     else "//nav//a[.='Clear Current Playlist']")
            self.ask(clear, "Clear the playlist", "ClientAction=clear")
            self.open(number)
            self.browser.all("input[name=filename]")[0].type(playlist)
            save = ("//input[@name='save']" if self.forms
                    else "//a[normalize-space()='Save Playlist |']")
            self.ask(save, f"Save the playlist as {playlist}", "ClientAction=save",
                     f"filename={playlist}")
        self.browser.links("Back to the album picker")[0].click()
        self.look(0)

    # Keeping

    def photograph(self, name):
        kind = "forms" if self.forms else "links"
        for width, height in (DESKTOP, PHONE):
            self.browser.resize(width, height)
            for number in (0, 1):
                self.open(number)
                self.look(number)
                # A phone shows a page that is too wide in small letters, and needs pushing about.
                expect(f"page {number} fits into {width}", True, self.browser.run(
                    "return document.scrollingElement.scrollWidth <= arguments[0]", width))
                self.browser.screenshot(self.screenshots / f"{name}-{kind}-page{number}-{width}.png")
            self.browser.open(self.server.address + "/Quillon/Quillon.asp")
            expect(f"player fits into {width}", True, self.browser.run(
                "return document.scrollingElement.scrollWidth <= arguments[0]", width))
            self.browser.screenshot(self.screenshots / f"{name}-{kind}-player-{width}.png")
        self.browser.resize(*DESKTOP)


def sources_hold_no_more_code(library):
    for page in (library.host / "HTML/Quillon/AlbumPicker").glob("*.asp"):
        text = page.read_text("ascii")
        expect(f"code in {page.name}", 2, text.count("<%"))
        expect(f"includes in {page.name}", 2, text.count("<!--#include"))


def tell(library, name, playlist, program, browser, screenshots):
    """Goes through a library with links and with forms; the structures of all pages."""
    structures = []
    for forms in (False, True):
        library.build_picker(forms)
        sources_hold_no_more_code(library)
        with Server(program, library.host) as server:
            visit = Visit(browser, server, library, forms, screenshots)
            structures.append(visit.walk())
            visit.thumbnails_lead_to_albums()
            visit.ask_for_music()
            visit.ask_for_the_rest(playlist)
            visit.photograph(name)
        print(f"{name} titles, {'forms' if forms else 'links'}: {visit.requests} requests", flush=True)
    return structures


def main():
    program, screenshots = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    shutil.rmtree(screenshots, ignore_errors=True)
    screenshots.mkdir(parents=True)
    started = time.monotonic()
    try:
        with tempfile.TemporaryDirectory(prefix="quillon-picker-") as folder, Browser() as browser:
            browser.resize(*DESKTOP)
            structures = []
            for name, albums, playlist in (
                    ("usual", plain_albums(), "Sunday & Monday"),
                    ("hostile", hostile_albums(), "\"><img src=x onerror=alert(1)> % + J\u00fcrgen")):
                (Path(folder) / name).mkdir()
                library = Library(program, Path(folder) / name, albums)
                structures.append(tell(library, name, playlist, program, browser, screenshots))
            # Titles are text: whatever they hold, the pages consist of the same elements.
            expect("elements with hostile titles", structures[0], structures[1])
    except (Failed, BrowserError, RuntimeError) as failure:
        print(f"FAILED: {failure}")
        return 1
    print(f"done in {time.monotonic() - started:.0f} s; screenshots in {screenshots}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
