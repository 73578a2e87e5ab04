mv away disk/Music/more.txt
