#!/usr/bin/env python3
"""The rooms of the sources, and who may include whom. usage: include_order_test.py SOURCE_FOLDER"""

import os
import re
import sys

# Folders of rooms, from the lowest up. A file includes what is in its own room and in those of lines before its own;
# rooms of one line do not know each other. A file that lies beside the rooms is one by its name.
ORDERS = {
    "qo_page": ["base", "template", "tokenizer", "tree", "text", "selectors tables forms edits", "api"],
    "cli": ["io", "args", "pages", "host viewer", "session", "commands", "main heap"],
}

# The libraries of this project and others that a part may include.
PARTS = {
    "qo_html": {"qo_html", "json"},
    "qo_page": {"qo_page"},
    "default_host": {"qo_html", "json"},
    "cli": {"qo_html", "qo_page", "json"},
    "python": {"qo_page"},
}

INCLUDE = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]', re.MULTILINE)


def levels(part):
    return {room: level for level, line in enumerate(ORDERS.get(part, [])) for room in line.split()}


def room_of(path):
    """Of a path in a part: its folder, or its own name where it is in none."""
    return path.split("/")[0] if "/" in path else os.path.splitext(path)[0]


def fault_of(part, path, included, installed):
    """Why the file of the part must not include that; nothing when it may."""
    first, _, rest = included.partition("/")
    if first in ("qo_html", "qo_page", "json") and first not in PARTS[part]:
        return f"{part} knows nothing of {first}"
    if part == "qo_page":
        if first != "qo_page" or rest in installed:
            return None
        if path in installed:
            return "an installed header includes installed headers alone"
        return order_fault(part, path, rest)
    if first == "qo_page" and "/" in rest:
        return "it is no installed header"
    if part == "cli" and room_of(included) in levels(part):
        return order_fault(part, path, included)
    return None


def order_fault(part, path, included):
    own, other = room_of(path), room_of(included)
    known = levels(part)
    for room in (own, other):
        if room not in known:
            return f"{room} is no room that has a place in the order"
    if own == other or known[other] < known[own]:
        return None
    return f"{own} is {'beside' if known[other] == known[own] else 'below'} {other}"


def sources(folder):
    for parent, _, names in os.walk(folder):
        for name in sorted(names):
            if name.endswith((".h", ".cpp", ".in")):
                yield os.path.relpath(os.path.join(parent, name), folder)


def faults_in(source):
    installed = {name for name in os.listdir(os.path.join(source, "qo_page")) if name.endswith(".h")}
    for part in PARTS:
        for path in sources(os.path.join(source, part)):
            with open(os.path.join(source, part, path), encoding="utf-8") as file:
                for included in INCLUDE.findall(file.read()):
                    fault = fault_of(part, path, included, installed)
                    if fault is not None:
                        yield f"src/{part}/{path} includes {included}: {fault}"


def check_the_check():
    """What it has to find, and what it has to let through."""
    installed = {"page.h", "node.h"}
    for part, path, included, is_fault in [
            ("qo_page", "forms/form_data.cpp", "qo_page/selectors/run.h", True),
            ("qo_page", "tree/tree.h", "qo_page/text/decode.h", True),
            ("qo_page", "page.h", "qo_page/tree/tree.h", True),
            ("qo_page", "odd/a.cpp", "qo_page/base/ascii.h", True),
            ("qo_page", "tree/tree.h", "qo_html/qo_html.h", True),
            ("qo_page", "base/ascii.h", "json/json.h", True),
            ("qo_page", "base/ascii.h", "qo_page/page.h", False),
            ("qo_page", "api/page.cpp", "qo_page/forms/form_fill.h", False),
            ("qo_html", "parser.cpp", "qo_page/page.h", True),
            ("default_host", "a.cpp", "qo_page/page.h", True),
            ("python", "nodes.cpp", "qo_page/tree/tree.h", True),
            ("python", "nodes.cpp", "qo_page/page.h", False),
            ("cli", "io/files.cpp", "args/options.h", True),
            ("cli", "viewer/tree_page.cpp", "host/reading.h", True),
            ("cli", "host/selectors.cpp", "session.h", True),
            ("cli", "commands/tree.cpp", "qo_page/tree/tree.h", True),
            ("cli", "commands/tree.cpp", "session.h", False),
            ("cli", "viewer/tree_page.cpp", "viewer.h", False)]:
        assert (fault_of(part, path, included, installed) is not None) == is_fault, (path, included)


def main():
    check_the_check()
    found = list(faults_in(os.path.join(sys.argv[1], "src")))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
