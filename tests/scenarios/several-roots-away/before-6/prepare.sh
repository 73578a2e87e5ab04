mv away disk/Elsewhere
mv disk/Music/more.txt away
