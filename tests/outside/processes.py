"""The one way in which tests written in Python run a program."""

import os
import subprocess
import tempfile
from typing import NamedTuple

TIME_LIMIT = 240


class Failed(Exception):
    """What was expected did not come true; the text says what."""


class Told(NamedTuple):
    """What a process gave back in the end."""

    returncode: int
    stdout: str
    stderr: str


class WithErrorsInAFile(subprocess.Popen):
    """A process whose standard error is kept in a file. What Wine starts beside a program holds that
    open, so who waits for the end of a pipe would wait for the end of all of it."""

    def __init__(self, command, **options):
        self.kept = tempfile.TemporaryFile()
        super().__init__(command, **{**options, "stderr": self.kept})

    def communicate(self, *arguments, **options):
        output, _ = super().communicate(*arguments, **options)
        self.kept.seek(0)
        return output, self.kept.read()


def start(command, folder=None, environment=None, kind=subprocess.Popen, **options):
    """A program as a process, in a folder, with further variables of its environment. Nothing is
    typed; what it prints is kept, unless the options say else. A variable that is None is taken
    away."""
    variables = dict(os.environ, LC_ALL="C.UTF-8", QUILLON_HOST=None, **(environment or {}))
    variables = {name: value for name, value in variables.items() if value is not None}
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
               **options}
    return kind([str(word) for word in command], cwd=folder, env=variables, **options)


def told_by(process, time_limit=TIME_LIMIT, given=None):
    """Waits for a process to end."""
    try:
        output, errors = process.communicate(given, timeout=time_limit)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise Failed(f"{' '.join(map(str, process.args))} did not end") from None
    return Told(process.returncode, text_of(output), text_of(errors))


def text_of(content):
    return content if isinstance(content, (str, type(None))) else content.decode("utf-8")


def call(command, folder=None, **options):
    """Runs a program to its end."""
    return told_by(start(command, folder, **options))


def output_of(command, folder=None, **options):
    """Standard output of a program that must succeed."""
    status, output, errors = call(command, folder, **options)
    if status != 0:
        raise Failed(f"{' '.join(map(str, command))}: exit status {status}\n{output}{errors}")
    return output
