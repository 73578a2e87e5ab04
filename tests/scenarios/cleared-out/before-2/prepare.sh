rm -r disk/Music/Alder
