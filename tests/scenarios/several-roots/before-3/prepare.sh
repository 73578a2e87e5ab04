printf '\n[Safety]\nBrake=0\n' >> host/host.ini
