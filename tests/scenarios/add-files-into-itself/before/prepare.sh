echo 'M=../disk/Music' >> host/host.ini
