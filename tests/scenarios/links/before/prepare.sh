ln -s ../Store disk/Music/Birch
ln -s ../../../Store/song.mp3 "disk/Music/Alder/First Light/02 - Song.mp3"
ln -s .. "disk/Music/Alder/Back to all"
ln -s . "disk/Music/Here again"
ln -s nowhere "disk/Music/Alder/First Light/03 - Broken.mp3"
