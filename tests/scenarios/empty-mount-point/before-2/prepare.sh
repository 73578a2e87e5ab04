mv disk/Music away
mkdir disk/Music
