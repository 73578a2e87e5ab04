INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0001", "Sea", "Blue", 1001, 1)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0001", 1, "Wave", "Blue", "D:\Music\Blue\Sea\01 - Wave.mp3")
