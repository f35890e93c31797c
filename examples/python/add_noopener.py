#!/usr/bin/python3
"""Gives links that open a new window rel="noopener", in all pages below a folder. usage: add_noopener.py [-w] FOLDER

Shows the changes; with -w, writes them."""

import sys
from typing import List

import qo

LINKS = qo.Selector("a[target='_blank' i]:not([rel])")


def add_noopener(folder: str, is_to_write: bool) -> int:
    """Returns how many places were left as they are, since an edit of them would not be exact."""
    refused = 0
    for page in qo.pages(folder):
        result = page.edit().attr(LINKS, "rel", "noopener").apply(on_refused="skip")
        for error in result.refused:
            print(f"{page.path}:{error.line}:{error.column}: {error}", file=sys.stderr)
        refused += len(result.refused)
        print(result.diff(), end="")
        if is_to_write:
            result.write()
    return refused


def main(arguments: List[str]) -> int:
    folders = [argument for argument in arguments if argument != "-w"]
    if len(folders) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    return 1 if add_noopener(folders[0], "-w" in arguments) > 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
