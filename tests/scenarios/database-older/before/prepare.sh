printf "\x00" | dd of=disk/jukebox.mdb bs=1 seek=20 conv=notrunc status=none
