INSERT INTO Albums (CDJID, Artist, Title, Tracks, Player) VALUES ("252E671073EC0001", "Alder", "First Light", 1, 1001)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0001", 1, "Dawn", "Alder", "D:\Music\Alder\First Light\01 - Dawn.mp3")
INSERT INTO SpinnerArtist (Artist, ArtistID, ShortBio, LongBio) VALUES ("Alder", 0, "", "")
