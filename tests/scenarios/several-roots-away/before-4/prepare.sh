rmdir disk/Music
mv away disk/Music
mv disk/Elsewhere away
mkdir disk/Elsewhere
