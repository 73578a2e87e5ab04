truncate -s $((20 * 4096)) disk/jukebox.mdb
