# The lock file's entry for one user: the computer's name and the user's, 32 bytes each.
printf 'JUKEBOX-PC%22sAdmin%27s' '' '' > disk/jukebox.ldb
