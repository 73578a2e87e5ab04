INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0007", "Gone", "Birch", 1001, 1)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0007", 1, "Hush", "Birch", "D:\Music\Birch\Gone\Hush.mp3")
INSERT INTO Spinner (Artist, Album, Song, FileName) VALUES ("Birch", "Gone", "Hush", "x-Folk-x")
