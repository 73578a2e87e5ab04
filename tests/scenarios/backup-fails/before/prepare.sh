chmod 000 disk/Lists/Closed.pla
