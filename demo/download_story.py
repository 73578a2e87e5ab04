"""The download table after the first runs."""

from telling import chapter, require, say


def tell(demo):
    chapter("The download table")
    say("Streaming programs find the library's songs in tables of their own. Each song got a link of "
        "its row's number; the genre is what stands in the middle of a link of its artist.")
    print()
    demo.show("SELECT ID, Genre, Length, Left(Song, 20) AS Title, FileName FROM Spinner"
              " WHERE Artist='Marble Foxes' AND Album='Slow Quarry' ORDER BY ID")
    songs = demo.rows("SELECT Albums.Artist, Albums.Title AS Album, Tracks.Title AS Song"
                      " FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID")
    spinner = demo.rows("SELECT * FROM Spinner")
    there = {(row["Artist"], row["Album"], row["Song"]) for row in spinner}
    require(all((row["Artist"], row["Album"], row["Song"]) in there for row in songs),
            "a song is missing in the download table")
    require(len(there) == len(spinner), "a song is in the download table twice")
    artists = {row["Artist"] for row in songs}
    require({row["Artist"] for row in demo.rows("SELECT Artist FROM SpinnerArtist")} == artists,
            "the artists of the download table are others")
    print()
    say(f"All {len(there)} songs of {len(artists)} artists are there, each once.")
