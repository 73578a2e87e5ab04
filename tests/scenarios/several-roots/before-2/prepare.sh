mv disk/Elsewhere away
rm -r disk/Music/Jazz/Birch
