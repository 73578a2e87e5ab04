"""Covers find their albums, and albums forget images that are gone."""

import base64

from telling import chapter, require, say

# One grey dot each.
GIF = base64.b64decode("R0lGODdhAQABAIAAAH9/fwAAACwAAAAAAQABAAACAkQBADs=")
JPEG = bytes([0xFF, 0xD8, 0xFF, 0xD9])

IMAGES = {
    "Marble Foxes - Slow Quarry.jpg": JPEG,
    "Marble Foxes - A Cold Statue.gif": GIF,
    # The same cover twice: the JPEG image is taken.
    "Ölvindr Skógur - Ljós & Leðja.gif": GIF,
    "Ölvindr Skógur - Ljós & Leðja.jpg": JPEG,
    "The Papier-Mâché Owls - Don't Feed the Lighthouse.jpg": JPEG,
    # These cannot be placed.
    "#9 Lantern.jpg": JPEG,
    "Nobody - Nowhere.jpg": JPEG,
}
GONE = "Marble Foxes - Slow Quarry.jpg"
COVERS = "SELECT Left(Artist, 22) AS Performer, Left(Title, 25) AS Album, ImageFile FROM Albums" \
         " WHERE ImageFile <> '' ORDER BY Artist, Title"


def tell(demo):
    chapter("Covers")
    folder = demo.host / "Covers"
    for name, content in IMAGES.items():
        (folder / name).write_bytes(content)
    say(f"{len(IMAGES)} images were put into {demo.shown(folder)}. A name \"Artist - Album\" ties an "
        "image to its album; the log tells which found none.")
    print()
    require(not demo.rows(COVERS), "some album has a cover already")
    demo.run()
    print()
    demo.show(COVERS)
    found = {row["ImageFile"].rsplit("\\", 1)[1] for row in demo.rows(COVERS)}
    require(found == {"Marble Foxes - Slow Quarry.jpg", "Marble Foxes - A Cold Statue.gif",
                      "Ölvindr Skógur - Ljós & Leðja.jpg",
                      "The Papier-Mâché Owls - Don't Feed the Lighthouse.jpg"},
            "other covers have found an album")

    (folder / GONE).unlink()
    (folder / "Nobody - Nowhere.jpg").unlink()
    (folder / "#9 Lantern.jpg").rename(folder / "#9 Lantern - Wick #2.jpg")
    print()
    say(f"Then \"{GONE}\" was deleted, and the image of #9 Lantern got the name of an album:")
    print()
    demo.run()
    print()
    demo.show(COVERS)
    after = demo.all_rows()
    now = {row["ImageFile"].rsplit("\\", 1)[1] for row in demo.rows(COVERS)}
    require(now == found - {GONE} | {"#9 Lantern - Wick #2.jpg"}, "the covers are others")
    demo.reconcile()
    again = demo.all_rows()
    require(again["Albums"] == after["Albums"], "a further run changed albums")
    print()
    say("A further run changed no album.")
