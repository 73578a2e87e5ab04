rm disk/jukebox.mdb.playlists
mkfifo disk/jukebox.mdb.playlists
