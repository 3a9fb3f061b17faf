#!/usr/bin/env python3
"""The folders know each other in one direction only, OBS is met in obs/ and plugin/ alone, and Qt through its public API.

    include_edges.py [CHECKOUT]
"""
import re

from sources import PRODUCT, files, line_of, report, root_from_arguments

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(["<])([^">\n]+)[">]', re.MULTILINE)
OBS_HEADER = re.compile(r"^(obs\b|(util|graphics|callback|media-io)/)")
PRIVATE_QT = re.compile(r"(^|/)private/|_p\.h$")
DOCK_SOURCES = re.compile(r"quillmar_library\(\s*quillmar_dock\s+SOURCES\s+([^)]*?)\s+(?:PUBLIC|PRIVATE)_LINKS", re.DOTALL)

# What each layer may include besides itself. A name without a slash is a layer, one with a slash a single header.
ALLOWED = {
    "ui_base": set(),
    "service": {"ui_base"},
    "packages": {"service/download_ticket.h", "service/log_function.h", "service/routes.h", "service/service_reply.h"},
    "obs": {"packages", "ui_base", "service/log_function.h"},
    "catalogue": {"obs", "packages", "ui_base", "service"},
    "dock": {"catalogue", "obs", "packages", "ui_base", "service"},
    "plugin": {"dock", "catalogue", "obs", "packages", "ui_base", "service"},
}


def layer_of(path, dock):
    """The layer of a path relative to the checkout; the files of the dock panel are those its library is built of."""
    folder, _, name = path.partition("/")
    if folder != "ui":
        return folder
    return "dock" if name.rsplit(".", 1)[0] in dock else "ui_base"


def problem_with(layer, form, header, dock):
    """What is wrong with this include, or nothing."""
    if PRIVATE_QT.search(header):
        return "private Qt API"
    if form == "<":
        is_obs = OBS_HEADER.match(header) and layer not in ("obs", "plugin")
        return "only obs/ and plugin/ may use OBS" if is_obs else None
    if header == "obs/libobs.h" and layer not in ("obs", "plugin"):
        return "only obs/ and plugin/ may use OBS"
    target = layer_of(header, dock)
    if target == layer or target in ALLOWED[layer] or header in ALLOWED[layer]:
        return None
    return f"{layer} must not know {target}"


def main():
    root = root_from_arguments()
    listed = DOCK_SOURCES.search((root / "ui/CMakeLists.txt").read_text(encoding="utf-8"))
    if not listed:
        report(["ui/CMakeLists.txt: quillmar_dock is not where this check expects it"])
    dock = {name.rsplit(".", 1)[0] for name in listed[1].split()}
    problems = []
    for path, text in files(root, PRODUCT, {".h", ".cpp"}):
        layer = layer_of(path.as_posix(), dock)
        for include in INCLUDE.finditer(text):
            if problem := problem_with(layer, include[1], include[2], dock):
                problems.append(f"{path}:{line_of(text, include.start(2))}: includes {include[2]}: {problem}")
    report(problems)


main()
