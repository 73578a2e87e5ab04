mv disk/Store away
rm "disk/Music/Alder/First Light/03 - Broken.mp3" disk/Music/Cedar/Roots/one.mp3
