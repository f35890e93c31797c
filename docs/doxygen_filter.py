#!/usr/bin/env python3
"""Shows Doxygen the headers' comments as its own.

A comment stands for all declarations that follow it without a blank line between them; a comment
"--- Title ---" begins a group of members.
"""

import re
import sys


def as_doxygen(comment):
    return [re.sub("//", "///", line, count=1) for line in comment]


def declarations(lines):
    """The lines, with each comment in front of every declaration that it stands for."""
    comment = []
    fresh = False  # the comment goes on, or no declaration has followed it yet
    at_start = True  # of a declaration
    in_group = False
    for line in lines:
        text = line.strip()
        code = text.split("  //")[0]
        title = re.fullmatch(r"// --- (.*) ---", text)
        if title or text == "};":
            if in_group:
                yield "/// @}\n"
            in_group = title is not None
            yield f"/// @name {title[1]}\n/// @{{\n" if title else line
        elif text.startswith("//"):
            comment = [*comment, line] if fresh else [line]
            fresh = True
        elif not text or text.startswith("#"):
            comment, fresh, at_start = [], False, True
            yield line
        else:
            if at_start:
                yield from as_doxygen(comment)
            yield re.sub(r"([;,]) +// ", r"\1 ///< ", line)
            if code.endswith("{"):
                comment = []
            fresh = False
            at_start = code.endswith((";", "}", "{", ":"))


def main():
    with open(sys.argv[1], encoding="utf-8") as header:
        lines = header.readlines()
    length = next(i for i, line in enumerate(lines) if not line.startswith("//"))
    introduction = as_doxygen(lines[:length])
    if sys.argv[1].endswith("/qo_html.h"):
        print("/// @mainpage", *introduction, "\n", sep="\n")
    print("/// @file", *introduction, sep="\n")
    sys.stdout.writelines(declarations(lines[length:]))


main()
