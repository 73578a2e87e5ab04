INSERT INTO Albums (CDJID, Artist, Title, Player, Tracks) VALUES ("252E671073EC0001", "Alder", "First Light", 1001, 2)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile, Minutes, Seconds) VALUES ("252E671073EC0001", 1, "Dawn, early", "Alder - Âme", "D:\Music\Alder\First Light\01 - Dawn.mp3", 3, 0)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile, Minutes, Seconds) VALUES ("252E671073EC0001", 2, "Noon", "Alder", "D:\Music\Alder\First Light\02 - Noon.mp3", 0, 45)
