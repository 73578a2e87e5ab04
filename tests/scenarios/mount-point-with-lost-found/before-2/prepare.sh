mv disk/Music away
mkdir -p disk/Music/lost+found
