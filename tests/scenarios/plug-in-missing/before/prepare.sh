sed -i 's/^Quillon=1$/Quillon=0/' host/host.ini
