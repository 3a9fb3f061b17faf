#!/usr/bin/env python3
"""Every text key in the code has a text, and every text is shown.

What the locale files themselves must be like is tested in tests/unit/ui.

    locale_keys.py [CHECKOUT]
"""
import re

from sources import PRODUCT, files, line_of, report, root_from_arguments, without_comments

ENTRY = re.compile(r'^([A-Za-z]+\.[A-Za-z]+)="', re.MULTILINE)
KEY = re.compile(r'"([A-Z][A-Za-z]+\.[A-Z][A-Za-z]+)"')


def keys_in_code(root):
    """Each key with the place where it is named first."""
    found = {}
    for path, text in files(root, PRODUCT, {".h", ".cpp"}):
        code = without_comments(text)
        for key in KEY.finditer(code):
            found.setdefault(key[1], f"{path}:{line_of(code, key.start())}")
    return found


def main():
    root = root_from_arguments()
    texts = set()
    for locale in ("en-US", "fa-IR"):
        texts |= set(ENTRY.findall((root / f"data/locale/{locale}.ini").read_text(encoding="utf-8")))
    shown = keys_in_code(root)
    problems = [f"{place}: {key} has no text" for key, place in shown.items() if key not in texts]
    problems += [f"{key}: has a text that no code shows" for key in sorted(texts - set(shown))]
    report(problems)


main()
