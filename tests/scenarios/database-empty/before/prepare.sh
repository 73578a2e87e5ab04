: > disk/jukebox.mdb
