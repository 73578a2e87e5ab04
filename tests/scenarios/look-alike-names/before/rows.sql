INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0001", "AxB", "Alder", 1001, 1)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0001", 1, "axb", "Alder", "D:\Music\Alder\AxB\01 - axb.mp3")
INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES ("252E671073EC0002", "Far", "Alder", 1001, 1)
INSERT INTO Tracks (CDJID, Track, Title, Artist, SoundFile) VALUES ("252E671073EC0002", 1, "far", "Alder", "\\nas\share\D:\Music\Alder\A_B\01 - a_b.mp3")
