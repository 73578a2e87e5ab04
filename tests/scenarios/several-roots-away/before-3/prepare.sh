rmdir disk/Music/Jazz
mv away disk/Music/Jazz
mv disk/Music away
mkdir disk/Music
