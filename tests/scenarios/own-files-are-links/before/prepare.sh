printf precious > disk/precious.txt
ln -s precious.txt disk/jukebox.mdb.playlists
