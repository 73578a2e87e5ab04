chmod 444 "disk/Music/Alder/First Light/Alder - Dusk.mp3"
