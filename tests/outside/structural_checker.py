"""The structural checker as a process that answers one question after another. A question is a line of the
checker's arguments, tabs between them; an answer a line of its status and the size of what it told, and
then that, in bytes."""

import os
import sys

import readers

for question in sys.stdin.buffer:
    status, told = readers.asked(*os.fsdecode(question.rstrip(b"\n")).split("\t"))
    answer = told.encode(errors="backslashreplace")
    sys.stdout.buffer.write(f"{status} {len(answer)}\n".encode() + answer)
    sys.stdout.buffer.flush()
