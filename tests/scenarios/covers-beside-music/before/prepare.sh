printf '[Covers]\nScanLibrary=1\nReservedFolder=Scans\n[Download]\nHost=radio.example\n' >> host/host.ini
