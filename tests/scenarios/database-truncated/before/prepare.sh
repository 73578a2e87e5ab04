truncate -s 100000 disk/jukebox.mdb
