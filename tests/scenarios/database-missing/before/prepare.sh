rm disk/jukebox.mdb
