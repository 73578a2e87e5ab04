printf '\n[Removed]\nOnlyIdentical=1\n' >> host/host.ini
