"""Finding and reading the project's own files, for the checks beside this one."""
import re
import sys
from pathlib import Path

PRODUCT = ("service", "packages", "ui", "obs", "catalogue", "plugin")
HIDDEN = re.compile(r"^(\.git|\.cache|build.*|__pycache__)$")


def files(root, folders, suffixes):
    """Files below `folders` of `root` with one of the suffixes, as (path relative to root, text)."""
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            relative = path.relative_to(root)
            if path.suffix in suffixes and path.is_file() and not any(map(HIDDEN.match, relative.parts)):
                yield relative, path.read_text(encoding="utf-8")


TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\((.*?)\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)


def without_comments(text):
    """C++ with its comments blanked; lines keep their numbers."""
    return TOKEN.sub(lambda token: _blank(token[0]) if token[0].startswith("/") else token[0], text)


def code_only(text):
    """C++ with comments, texts and characters blanked; lines keep their numbers."""
    return TOKEN.sub(lambda token: _blank(token[0]), text)


def _blank(text):
    return " " + "\n" * text.count("\n")


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def report(problems):
    """Prints what is wrong and ends the program: 0 when nothing is."""
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


def root_from_arguments():
    """The checkout: the first argument, or the one this file lies in."""
    return Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parents[2]
