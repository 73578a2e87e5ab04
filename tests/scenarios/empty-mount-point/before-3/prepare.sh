rmdir disk/Music
mv away disk/Music
