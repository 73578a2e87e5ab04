: > disk/jukebox.ldb
