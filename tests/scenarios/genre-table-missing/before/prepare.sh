LC_ALL=C sed -i "s/SpinnerGenre/SpinnerGenrX/g" disk/jukebox.mdb
