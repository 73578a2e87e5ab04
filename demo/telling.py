"""How a story is told on a terminal, and how it is checked while it is told."""

import itertools
import textwrap

WIDTH = 78
CHAPTERS = itertools.count(1)


class Untrue(Exception):
    """The story does not hold."""


def say(text):
    print(textwrap.fill(text, WIDTH, break_on_hyphens=False, break_long_words=False), flush=True)


def heading(text):
    print(f"\n{text}\n{'-' * len(text)}", flush=True)


def chapter(title):
    heading(f"{next(CHAPTERS)}. {title}")


def require(condition, text):
    if not condition:
        raise Untrue(text)


def count(number, word):
    return f"{number} {word}{'' if number == 1 else 's'}"
