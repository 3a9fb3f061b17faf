#!/usr/bin/env python3
"""Every text key in the code has a text, and every text is shown or listed in keys_not_shown_yet.txt.

What the locale files themselves must be like is tested in tests/unit/ui.

    locale_keys.py [CHECKOUT]
"""
import re

from sources import PRODUCT, files, line_of, report, root_from_arguments, without_comments

ENTRY = re.compile(r'^([A-Za-z]+\.[A-Za-z]+)="', re.MULTILINE)
KEY = re.compile(r'"([A-Z][A-Za-z]+\.[A-Z][A-Za-z]+)"')
NOT_SHOWN = "tests/checks/keys_not_shown_yet.txt"


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
    not_shown = (root / NOT_SHOWN).read_text(encoding="utf-8").split()
    problems = [f"{place}: {key} has no text" for key, place in shown.items() if key not in texts]
    problems += [f"{key}: neither in the code nor in {NOT_SHOWN}" for key in sorted(texts - set(shown) - set(not_shown))]
    problems += [f"{NOT_SHOWN}: {key} is in the code now" for key in not_shown if key in shown]
    problems += [f"{NOT_SHOWN}: {key} has no text" for key in not_shown if key not in texts]
    problems += [f"{NOT_SHOWN}: {key} is listed twice" for key in sorted(set(not_shown)) if not_shown.count(key) > 1]
    report(problems)


main()
