printf '\n[Safety]\nMaxRemovedFiles=1\n' >> host/host.ini
