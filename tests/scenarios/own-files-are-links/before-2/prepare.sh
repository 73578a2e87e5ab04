rm disk/jukebox.mdb.marks
mkfifo disk/jukebox.mdb.playlists
