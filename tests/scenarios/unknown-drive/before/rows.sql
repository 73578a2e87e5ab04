INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0001", "First Light", "Alder", 1001, 2)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0001", 2, "Dawn", "Alder", "Q:\Music\Alder\First Light\01 - Dawn.mp3")
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0001", 1, "Noon", "Alder", "Q:\Music\Alder\First Light\02 - Noon.mp3")
# The download table knows them, too, so that it has nothing to add.
INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES ("Alder", "First Light", "Dawn", "Folk")
INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES ("Alder", "First Light", "Noon", "Folk")
INSERT INTO SpinnerArtist (Artist) VALUES ("Alder")
