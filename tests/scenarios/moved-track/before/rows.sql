INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0004", "Old", "Alder", 1001, 2)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile, TimesPlayed, Minutes, Seconds) VALUES ("252E671073EC0004", 1, "a wrong title", "Somebody", "d:\music\ALDER\new\01 - dawn.mp3", 5, 4, 11)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0004", 2, "Dusk", "Alder", "D:\Music\Alder\Old\01 - Dusk.mp3")
