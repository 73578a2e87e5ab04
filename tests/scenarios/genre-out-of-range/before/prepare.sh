$QUILLON db exec disk/jukebox.mdb "INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (256, \"Beyond\")" >out.txt
