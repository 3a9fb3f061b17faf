#!/usr/bin/env python3
"""The project's texts refer to nothing outside the repository: no document that readers lack, no folder of one machine.

    wording.py [CHECKOUT]
"""
import re

from sources import files, line_of, report, root_from_arguments

# Written so that no pattern finds itself.
ELSEWHERE = re.compile(
    r"\b[s]pecification\b|\bthe [s]pec\b|\b[s]pec\.md\b|\b[P]art [1-5]\.[1-9]\b"
    r"|(?:^|[\s\"'=(])/(?:[w]ork|[f]arm|[h]ome/(?!developer))/",
    re.MULTILINE | re.IGNORECASE,
)
SUFFIXES = {".h", ".cpp", ".py", ".sh", ".md", ".txt", ".cmake", ".json", ".ini", ".supp", ""}
FOLDERS = (".",)


def main():
    problems = []
    for path, text in files(root_from_arguments(), FOLDERS, SUFFIXES):
        if path.name == "LICENSE":
            continue
        for words in ELSEWHERE.finditer(text):
            problems.append(f"{path}:{line_of(text, words.start())}: '{words[0].strip()}' means nothing to readers of this repository")
    report(problems)


main()
