printf "%08192d" 7 > disk/jukebox.mdb
