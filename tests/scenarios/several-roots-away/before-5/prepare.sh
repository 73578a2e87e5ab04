rmdir disk/Elsewhere
