#!/usr/bin/env python3
"""check_pages.py PROGRAM links|buttons   builds the album picker of a library with hostile texts and
reads every page with an independent parser."""

import sys
from pathlib import Path
from urllib.parse import parse_qsl, unquote, urlsplit

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scenarios"))

from page import Page
from stage import Failed, Stage

PLAYER = "/Quillon/Quillon.asp"
PAGE_URL = "/Quillon/AlbumPicker/"
WIDE, HIGH = 3, 2
ACTIONS = {"add", "next", "play", "clear", "save"}

TEXTS = [
    "Plain", "D'Arcy & the Half-Moons", '"quoted"', "<b>bold</b>", "</td></tr></table>",
    "<script>alert('x')</script>", "<%Response.Write(1)%>", '"); Response.End \'', "%>",
    "<!--#include file=\"c:\\x\"-->", "-->", "&copy; &#60;b&#62; &lt", "' onmouseover='x",
    "javascript:alert(1)", "a=b&c=d#e?f", "100% `tick` \\back\\", "Ölvindr Skógur", "שיר ראשון",
    "\u202eright to left", "日本語", "🎵 note", "x" * 250, "  blanks  ", "]]>", "\x7f\x85 control",
]


def require(condition, text):
    if not condition:
        raise Failed(text)


def literal(text):
    return "'" + text.replace("'", "''") + "'"


def identifier(number):
    # One that could break out of a link or a field, were it not encoded.
    return "'&ref=9 >\"é" if number == 3 else f"252E671073EC{number:04}"


def set_the_scene(stage, buttons):
    covers = stage.disk / "Covers"
    covers.mkdir()
    for number, text in enumerate(TEXTS, 1):
        image = "Null"
        if number % 3 == 0:
            name = f"Cover {number} & 'é' ñ #1;=.jpg"
            (covers / name).write_bytes(b"image")
            image = literal("D:\\Covers\\" + name)
        stage.execute("INSERT INTO Albums (CDJID, Artist, Title, Tracks, Minutes, Seconds, "
                      f"ImageFile) VALUES ({literal(identifier(number))}, {literal(text)}, "
                      f"{literal(TEXTS[-number])}, 2, -1, -1, {image})")
        for track in (1, 2):
            stage.execute("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES "
                          f"({literal(identifier(number))}, {track}, {literal(text)}, 3, 7)")
    stage.settings.update(AlbumPicker="1", PickerMinimum="2", ImagesWide=str(WIDE),
                          ImagesHigh=str(HIGH), PickerFormatOption="1" if buttons else "0",
                          AlbumCoverFolder="D:\\Covers\\")
    stage.write_settings()


def shown(text):
    """What a reader sees of a text: control characters are blanks."""
    return "".join(" " if ord(one) < 32 or 0x7F <= ord(one) < 0xA0 else one for one in text)


def check_request(where, fields, ids):
    require(fields["ClientAction"] in ACTIONS, f"{where}: {fields}")
    require(fields["Frame"].lower() == "picker", f"{where}: {fields}")
    if fields["ClientAction"] in ("add", "next", "play"):
        require(fields["CDJID"] in ids, f"{where}: {fields}")
        require(fields["ref"] in ("0", "1", "2"), f"{where}: {fields}")
        return fields["ClientAction"], fields["CDJID"], fields["ref"]
    require("CDJID" not in fields, f"{where}: {fields}")
    return fields["ClientAction"], "", ""


def requests_of(where, page, ids):
    """All that a page can ask the player for."""
    asked = []
    for target, _, _ in page.links:
        split = urlsplit(target)
        if split.path == PLAYER and split.query:
            pairs = parse_qsl(split.query, strict_parsing=True)
            require(len(dict(pairs)) == len(pairs), f"{where}: {target}")
            asked.append(check_request(where, dict(pairs), ids))
    for form, inputs in page.forms:
        if form["action"] != PLAYER:
            continue
        require(form["method"] == "get", f"{where}: {form}")
        hidden = {one["name"]: one["value"] for one in inputs if one["type"] == "hidden"}
        actions = [one["value"] for one in inputs
                   if one["type"] == "submit" and one["name"] == "ClientAction"]
        for action in actions or [hidden["ClientAction"]]:
            asked.append(check_request(where, dict(hidden, ClientAction=action), ids))
    return asked


def check_targets(where, page, pages, web):
    """Every link, form and image leads to something that is there."""
    targets = [target for target, _, _ in page.links] + [form["action"] for form, _ in page.forms]
    targets += [image["src"] for image in page.images]
    targets += [attributes["href"] for tag, attributes in page.elements if tag == "link"]
    for target in targets:
        split = urlsplit(target)
        if target == "javascript:document.savePlaylist.submit()" or split.path == PLAYER:
            continue
        require(not split.scheme and not split.netloc, f"{where} leads elsewhere: {target}")
        path = split.path if split.path.startswith("/") else PAGE_URL + split.path
        require((web / unquote(path).lstrip("/")).is_file(), f"{where}: no file for {target}")
        if split.fragment:
            require(split.fragment in pages[path.rsplit("/", 1)[1]].ids, f"{where}: {target}")


def check_page(where, page, pages, web):
    require(not page.faults, f"{where}: {page.faults}")
    require(page.count("h1") == 1, f"{where} has {page.count('h1')} main headings")
    require(page.count("nav") == 1, f"{where} has no navigation")
    saving = [form for form, _ in page.forms if form.get("name") == "savePlaylist"]
    require(len(saving) == 1, f"{where} does not offer to save the playlist")
    for image in page.images:
        require(image["alt"] and image["width"] == image["height"], f"{where}: {image}")
    check_targets(where, page, pages, web)


def walk(pages, last):
    """First, Next, Previous and Last lead over all pages, numbered links to each."""
    index = pages["AlbumPicker0.asp"]
    name = index.link_to("First")
    for number in range(1, last + 1):
        require(name == f"AlbumPicker{number}.asp", f"page {number} is {name}")
        page = pages[name]
        require(page.title == f"Album Picker Page {number}", f"{name}: {page.title}")
        for caption, target in (("First", 1), ("Last", last), ("Index", 0)):
            require(page.link_to(caption) == f"AlbumPicker{target}.asp", f"{name}: {caption}")
        before = f"AlbumPicker{number - 1}.asp" if number > 1 else None
        require(page.link_to("Previous") == before, f"{name}: Previous")
        for other in range(1, last + 1):
            for origin in (index, page):
                require(origin.link_to(f"Page {other}") == f"AlbumPicker{other}.asp",
                        f"{name}: Page {other}")
        name = page.link_to("Next")
    require(name is None, "the last page has a Next")


def check(stage):
    folder = stage.web / "Quillon" / "AlbumPicker"
    pages = {file.name: Page(file.read_bytes()) for file in folder.glob("*.asp")}
    count = len(TEXTS)
    last = -(-count // (WIDE * HIGH))
    require(set(pages) == {f"AlbumPicker{number}.asp" for number in range(last + 1)},
            f"pages: {sorted(pages)}")
    for name, page in pages.items():
        check_page(name, page, pages, stage.web)
    walk(pages, last)

    index = pages["AlbumPicker0.asp"]
    require(index.title == "Album Picker Index Page", index.title)
    require(len(index.images) == count, f"{len(index.images)} thumbnails")
    ids = {identifier(number) for number in range(1, count + 1)}
    wanted = {shown(text) for text in TEXTS}
    require(set(index.texts["bdi"]) == wanted, "the index shows other texts")
    asked, titles, others = [], [], []
    for number in range(1, last + 1):
        page = pages[f"AlbumPicker{number}.asp"]
        require(len(page.images) == page.count("h2"), "an album without a heading or image")
        asked += requests_of(page.title, page, ids)
        titles += page.texts["h2"]
        others += page.texts["bdi"]
    require(sorted(titles) == sorted(wanted), "the album pages show other titles")
    require(set(others) == wanted, "the album pages show other artists or songs")
    albums = [(action, album, "0") for action in ("add", "next", "play") for album in ids]
    tracks = [("add", album, track) for track in ("1", "2") for album in ids]
    rest = [one for one in asked if one[1]]
    require(sorted(rest) == sorted(albums + tracks), "the pages ask for other things")
    require({"clear", "save"} <= {one[0] for one in asked}, "no clear or save")


def main():
    buttons = sys.argv[2] == "buttons"
    with Stage(sys.argv[1]) as stage:
        try:
            set_the_scene(stage, buttons)
            status, output, errors = stage.reconcile()
            require(status == 0 and not stage.log_messages(),
                    f"exit status {status}\n{stage.log_messages()}\n{output}{errors}")
            check(stage)
        except Failed as failure:
            print(failure)
            return 1
    print(f"{len(TEXTS)} albums: all pages are as they should be")
    return 0


if __name__ == "__main__":
    sys.exit(main())
