rm -r disk/Music/*
