printf '\n[Removed]\nKeep=no\n' >> host/host.ini
