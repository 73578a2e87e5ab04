rm disk/jukebox.mdb.playlists
mkdir host/Data/Quillon
ln -s ../../../disk/precious.txt host/Data/Quillon/QuillonReconcile.csv
