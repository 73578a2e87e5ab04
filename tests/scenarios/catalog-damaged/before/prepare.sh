# The catalog keeps table names as two-byte characters; one letter makes another name of it.
python3 - <<'END'
path = "disk/jukebox.mdb"
content = open(path, "rb").read()
name = "SpinnerGenre".encode("utf-16-le")
assert name in content
open(path, "wb").write(content.replace(name, "SpinnerGenrX".encode("utf-16-le")))
END
