#!/usr/bin/env python3
"""What OBS's plug-in manager reads about the module is whole, and of this version.

    manifest.py [CHECKOUT [VERSION]]

Without a version, the one that the project's CMakeLists.txt names.
"""
import json
import re
import sys

from sources import report, root_from_arguments

NAME = "quillmar-obs-plugin"
KINDS = {
    "id": str,
    "name": str,
    "display_name": str,
    "version": str,
    "os_arch": str,
    "description": str,
    "long_description": str,
    "urls": dict,
    "has_banner": bool,
    "has_icon": bool,
}
URLS = {"repository", "support", "website"}
PICTURES = {"has_banner": "banner.png", "has_icon": "icon.png"}
VERSION = re.compile(r"^project\(\S+ VERSION (\S+)", re.MULTILINE)


def problems_of(manifest, version, data):
    if not isinstance(manifest, dict):
        return ["is no object"]
    problems = [f"{key} is missing" for key in KINDS if key not in manifest]
    problems += [f"OBS reads no {key}" for key in manifest if key not in KINDS]
    problems += [f"{key} is no {kind.__name__}" for key, kind in KINDS.items() if not isinstance(manifest.get(key, kind()), kind)]
    problems += [f"{key} says nothing" for key, kind in KINDS.items() if kind is str and not manifest.get(key, "x")]
    if problems:
        return problems
    problems += [f"{key} is not {NAME}" for key in ("id", "name") if manifest[key] != NAME]
    if manifest["version"] != version:
        problems.append(f"version is {manifest['version']}, the project's is {version}")
    problems += [f"OBS reads no address {key}" for key in sorted(set(manifest["urls"]) - URLS)]
    problems += [f"the {key} address is not https" for key, url in manifest["urls"].items() if not str(url).startswith("https://")]
    return problems + [f"{key}, but there is no {file}" for key, file in PICTURES.items() if manifest[key] and not (data / file).exists()]


def main():
    root = root_from_arguments()
    version = sys.argv[2] if len(sys.argv) > 2 else VERSION.search((root / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
    path = root / "data/manifest.json"
    try:
        manifest = json.loads(path.read_text(encoding="utf-8"))
    except (OSError, ValueError) as error:
        report([f"{path}: {error}"])
    report([f"data/manifest.json: {problem}" for problem in problems_of(manifest, version, path.parent)])


main()
