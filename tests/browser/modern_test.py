#!/usr/bin/env python3
"""modern_test.py PROGRAM FOLDER NPM-FOLDER   the modern album picker in a browser: libraries of 0 to 10,000 albums,
phone to desktop, light and dark. Screenshots are left in FOLDER. Exit status 77 where npm cannot be reached and all
else is well."""

import gzip
import re
import shutil
import sys
import tempfile
import time
from pathlib import Path
from urllib.parse import unquote, urlsplit

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "app" / "serve"))

import player
from accessibility import Axe
from modern_library import ModernLibrary, albums_for
from serving import Server
from webdriver import Browser, BrowserError

SKIPPED = 77
INDEX = "/Quillon/AlbumPicker/AlbumPicker0.asp"
SIZES = [(390, 844), (768, 1024), (1280, 900)]
MOST_BYTES, MOST_MILLISECONDS = 300_000, 500
FACTS = """return {
    wide: document.scrollingElement.scrollWidth,
    broken: [...document.images].filter(image => image.complete && !image.naturalWidth).map(image => image.src),
    covers: [...document.images].map(image => image.naturalWidth),
    cards: [...document.querySelectorAll('.picker-content .picker-grid a')].map(link =>
        [...link.querySelectorAll('bdi')].map(name => name.textContent)),
    ids: [...document.querySelectorAll('[id]')].map(element => element.id),
    headings: [...document.querySelectorAll('h1')].length,
};"""
PAINT = """const [page] = performance.getEntriesByType('navigation');
const paint = performance.getEntriesByName('first-contentful-paint')[0];
return page.loadEventEnd && paint ? [paint.startTime, page.loadEventEnd] : null;"""


class Failed(Exception):
    """What was expected did not come true; the text says what."""


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r:.600}, got {actual!r:.600}")


class Visit:
    def __init__(self, browser, server, library, axe, screenshots):
        self.browser, self.server, self.library = browser, server, library
        self.axe, self.screenshots = axe, screenshots
        self.requests = 0

    def open(self, name=""):
        self.browser.open(self.server.address + INDEX.replace("AlbumPicker0.asp", name or "AlbumPicker0.asp"))
        self.wait_for_end()

    def wait_for_end(self):
        self.browser.wait("its end", lambda: self.browser.run("return document.readyState") == "complete")

    def facts(self):
        facts = self.browser.run(FACTS)
        expect("images that are not shown", [], facts["broken"])
        expect("main headings", 1, facts["headings"])
        expect("places that are there twice", len(facts["ids"]), len(set(facts["ids"])))
        self.is_calm()
        return facts

    def is_calm(self):
        expect("messages of the console", [], [entry["message"] for entry in self.browser.console()])

    def look(self, name, pages, thorough):
        """Each page at all sizes, light and dark; each size in one of them where it need not be thorough."""
        for page in pages:
            for place, (width, height) in enumerate(SIZES):
                for scheme in ("light", "dark") if thorough else (("dark", "light")[place % 2],):
                    self.browser.prefer(scheme)
                    self.browser.resize(width, height)
                    self.open(page)
                    facts = self.facts()
                    expect(f"{name} {page} fits into {width}", True, facts["wide"] <= width)
                    # Large libraries have more of the same.
                    if len(self.library.albums) < 5000 or width == 1280:
                        expect(f"{name} {page} {width} {scheme}", [], self.axe.violations(self.browser))
                    self.photograph(f"{name}-{page.removesuffix('.asp') or 'index'}-{width}-{scheme}")
        self.browser.prefer("light")
        self.browser.resize(*SIZES[-1])

    def photograph(self, name):
        self.browser.screenshot(self.screenshots / f"{name}.png", most=2200)

    # The parts of a visit

    def index_holds_all(self):
        """Every album is once in the index, on whatever page, and its link leads to it."""
        cards, page = [], ""
        while True:
            self.open(page)
            cards += self.facts()["cards"]
            following = self.browser.all("//nav[@class='picker-steps']/a[starts-with(., 'Next')]", "xpath")
            if not following:
                break
            page = following[0].property("href").rsplit("/", 1)[1]
        expect("albums in the index", sorted((one.title, one.artist) for one in self.library.albums),
               sorted(map(tuple, cards)))

    def link_leads_to_album(self, position):
        self.open()
        link = self.browser.all(".picker-grid a")[position]
        title, artist = self.browser.run("return [...arguments[0].querySelectorAll('bdi')].map(one => one.textContent)",
                                         link.reference())
        link.click()
        self.browser.wait("an album page", lambda: "AlbumPicker0" not in self.browser.address())
        self.wait_for_end()
        shown = self.browser.run("const album = document.querySelector(':target');"
                                 "return [album.querySelector('h2').textContent, "
                                 "        album.querySelector('header p').textContent]")
        expect("album at the place", [title, artist], shown)
        self.browser.all("//nav/a[.='Back to Album Listing']", "xpath")[0].click()
        self.browser.wait("the index", lambda: "#page" in self.browser.address())
        expect("the way back", True, self.browser.run("return !!document.querySelector(':target')"))

    def search(self, text):
        """Titles of albums and tracks that are found."""
        field = self.browser.all("input[type=search]")[0]
        field.type(text)
        self.browser.wait(f"what '{text}' finds", lambda: self.browser.run(
            "const status = document.querySelector('.picker-found [role=status]').textContent;"
            "return status.includes('track') && !status.includes('Looking')"
            " && location.hash === '#q=' + encodeURIComponent(arguments[0])", text))
        self.is_calm()
        return self.browser.run(
            "const names = kind => [...document.querySelectorAll(`.picker-found .${kind} a`)]"
            "    .map(link => link.querySelector('bdi').textContent);"
            "return [names('picker-grid'), names('picker-songs')]")

    def finds(self):
        album = self.library.albums[len(self.library.albums) // 2]
        self.open()
        albums, tracks = self.search(f"{album.artist} {album.title}"[:60].lower())
        expect("the album is found", True, album.title in albums)
        albums, tracks = self.search(album.tracks[3])
        expect("the track is found", True, album.tracks[3] in tracks)
        expect("there is such an album", True, self.search("dyrd i daudathogn") == [[], []])
        expect("accents do not count", True, "L'été – à la plage" in self.search("beyonce ete")[0])
        expect("nothing", [[], []], self.search("nothing of the kind"))
        expect("violations", [], self.axe.violations(self.browser))
        albums, tracks = self.search("light")
        self.photograph("search")
        expect("violations", [], self.axe.violations(self.browser))
        self.browser.all(".picker-songs a")[0].click()
        self.browser.wait("the album", lambda: "#album" in self.browser.address())
        self.browser.call("POST", "/back", {})
        self.browser.wait("the results again", lambda: self.browser.run(
            "return document.querySelectorAll('.picker-songs a').length") > 0)

    def ask(self, control, sentence, *sent):
        """Clicks, and looks at what the player was asked for."""
        self.requests += 1
        expect("request", [str(self.requests), sentence, *sent], player.ask(self.browser, control))

    def asks(self):
        """The player is asked for the same things as by the classic pages."""
        album = self.library.in_order()[0]
        name, place = f"{album.title} by {album.artist}", "//article[@id='album1']"
        for caption, action, sentence in (("Add", "add", f"Add {name} to the playlist"),
                                          ("Play next", "next", f"Play {name} next"),
                                          ("Play", "play", f"Play {name} now")):
            self.open("AlbumPicker1.asp")
            self.ask(f"{place}//div[@class='picker-actions']//*[.='{caption}']", sentence, f"ClientAction={action}",
                     f"CDJID={album.cdjid}", "ref=0")
        self.open("AlbumPicker1.asp")
        self.ask(f"{place}//tbody/tr[4]//*[.='Add']", f"Add track 4, {album.tracks[3]}, of {name} to the playlist",
                 "ClientAction=add", f"CDJID={album.cdjid}", "ref=4")
        for page in ("", "AlbumPicker1.asp"):
            self.open(page)
            self.browser.all("summary")[0].click()
            self.browser.all("input[name=filename]")[0].type("J\u00fcrgen's \"list\"")
            self.ask("//form[@name='savePlaylist']//button", "Save the playlist as J\u00fcrgen's \"list\"",
                     "ClientAction=save", "filename=J\u00fcrgen's \"list\"")
            self.open(page)
            self.browser.all("summary")[0].click()
            self.ask("//div[@class='picker-playlist']//*[.='Clear playlist']", "Clear the playlist",
                     "ClientAction=clear")


def pages_of(library):
    return sorted((library.host / "HTML" / "Quillon" / "AlbumPicker").iterdir())


def sources_are_sound(library):
    """No page is too large, none holds server code of its own, every address in them leads somewhere: so all can be
    reached without a script."""
    texts = {file.name: file.read_text("ascii") for file in pages_of(library)}
    largest = max((len(gzip.compress(text.encode(), 6)), name) for name, text in texts.items() if name.endswith(".asp"))
    expect(f"compressed size of {largest[1]}", True, largest[0] <= MOST_BYTES)
    links = [link for name, text in texts.items() if re.fullmatch(r"AlbumPicker(0|Artists\d+)\.asp", name)
             for link in re.findall(r"<li[^>]*><a href='/Quillon/AlbumPicker/([^']+)'", text)]
    expect("albums in the index", len(library.albums), len(links))
    expect("albums that are there twice", len(links), len(set(links)))
    ids = {name: set(re.findall(r" id='([^']+)'", text)) for name, text in texts.items()}
    covers = {}
    for name, text in texts.items():
        if not name.endswith(".asp"):
            expect(f"markup in {name}", False, "<%" in text or "</script" in text)
            continue
        expect(f"code in {name}", (2, 2), (text.count("<%"), text.count("<!--#include")))
        for address in set(re.findall(r" (?:href|src|action)='([^']+)'", text)):
            parts = urlsplit(address)
            if parts.path == "/Quillon/Quillon.asp":
                continue
            if "/albumcovers/" in parts.path:
                if parts.path not in covers:
                    covers[parts.path] = (library.host / "HTML" / unquote(parts.path).lstrip("/")).is_file()
                expect(f"file of {address}", True, covers[parts.path])
                continue
            target = parts.path.rsplit("/", 1)[1] if "/" in parts.path else parts.path or name
            expect(f"page of {address} on {name}", True, target in texts)
            if parts.fragment:
                expect(f"place of {address} on {name}", True, parts.fragment in ids[target])
    return largest


def nothing_is_written_again(library):
    site = library.host / "HTML"
    before = {file: file.stat().st_mtime_ns for file in site.rglob("*")}
    library.build()
    expect("files that an unchanged run has written", {}, {
        str(file): True for file in site.rglob("*") if before.get(file) != file.stat().st_mtime_ns})


def metrics(browser):
    return {one["name"]: one["value"] for one in browser.developer("Performance.getMetrics")["metrics"]}


def milliseconds_to_show(visit):
    """The first page, the best of some tries: until it is painted, until it is loaded, and what the page's own thread
    works for it, which does not depend on who else uses this machine."""
    visit.browser.developer("Performance.enable", timeDomain="threadTicks")
    tries = []
    for _ in range(3):
        visit.browser.open(visit.server.address + "/Quillon/Quillon.asp")
        visit.wait_for_end()
        before = metrics(visit.browser)["ThreadTime"]
        visit.open()
        paint, loaded = visit.browser.wait("the paint", lambda: visit.browser.run(PAINT))
        # A page may get a process of its own, whose clock begins anew.
        work = metrics(visit.browser)["ThreadTime"]
        tries.append((paint, loaded, 1000 * (work - before if work > before else work)))
    visit.browser.developer("Performance.disable")
    return [min(values) for values in zip(*tries)]


def visit_library(count, program, folder, browser, axe, screenshots):
    started = time.monotonic()
    albums = albums_for(count)
    library = ModernLibrary(program, folder / str(count), albums)
    made = time.monotonic()
    # Pages of a few albums each, where there are few, so that there are some.
    library.build(PickerFormatOption=0, ImagesWide=3 if count == 19 else 5, ImagesHigh=2 if count == 19 else 3)
    built = time.monotonic()
    largest = sources_are_sound(library)
    views = {19: ["AlbumPickerGenres1.asp", "AlbumPickerNew1.asp"], 5000: ["AlbumPickerNew1.asp"],
             10_000: ["AlbumPickerGenres1.asp"]}.get(count, [])
    with Server(program, library.host) as server:
        visit = Visit(browser, server, library, axe, screenshots)
        visit.look(f"{count}", ["", *(["AlbumPicker1.asp"] if 0 < count < 5000 else [])], count == 19)
        visit.look(f"{count}", views, False)
        if count == 19:
            visit.index_holds_all()
        if count in (19, 10_000):
            visit.link_leads_to_album(11)
            visit.finds()
        if count == 19:
            visit.asks()
        if count == 10_000:
            paint, loaded, work = milliseconds_to_show(visit)
            print(f"10,000 albums: painted after {paint:.0f} ms, loaded after {loaded:.0f} ms, {work:.0f} ms of work",
                  flush=True)
            expect("the first page shows in time", True, work <= MOST_MILLISECONDS)
    if count == 19:
        nothing_is_written_again(library)
        library.build(PickerFormatOption=1)
        sources_are_sound(library)
        with Server(program, library.host) as server:
            visit = Visit(browser, server, library, axe, screenshots)
            visit.asks()
            visit.look("19-forms", ["AlbumPicker1.asp"], False)
    print(f"{count} albums: rows in {made - started:.1f} s, pages in {built - made:.1f} s, looked at in "
          f"{time.monotonic() - built:.1f} s; {len(pages_of(library))} files, the largest page "
          f"{largest[0] / 1000:.0f} KB compressed ({largest[1]})", flush=True)


def main():
    program, screenshots = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    counts = [int(count) for count in sys.argv[4:]] or [0, 1, 19, 5000, 10_000]
    shutil.rmtree(screenshots, ignore_errors=True)
    screenshots.mkdir(parents=True)
    axe = Axe(Path(sys.argv[3]))
    try:
        with tempfile.TemporaryDirectory(prefix="quillon-picker-") as folder, Browser() as browser:
            for count in counts:
                visit_library(count, program, Path(folder), browser, axe, screenshots)
    except (Failed, BrowserError, RuntimeError) as failure:
        print(f"FAILED: {failure}")
        return 1
    if axe.problem:
        print(f"axe-core is not at hand: {axe.problem}")
        return SKIPPED
    return 0


if __name__ == "__main__":
    sys.exit(main())
