#!/usr/bin/env python3
"""Writes into docs/hosting.md the names by which a host looks up the functions of libqo_html.so with dlsym.

The compiler spells them: they are read from the library itself.

usage: list_host_names.py NM LIBRARY [--check]   (--check writes nothing and fails when the table is out of date)
"""

import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs/hosting.md"
HEAD = "| function | name |\n|---|---|\n"

# What the demangler spells out, and how the headers call it.
SHORT = [
    (r"\[abi:cxx11\]", ""),
    (r"std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string"),
    (r", std::allocator<[^<>]*> ?>", ">"),
]


def defined(nm, library, *options):
    run = subprocess.run([nm, "-D", "--defined-only", *options, library], check=True, text=True, stdout=subprocess.PIPE)
    return [line.split(" ", 2)[1:] for line in run.stdout.splitlines() if "@" not in line]


def shortened(function):
    for pattern, replacement in SHORT:
        function = re.sub(pattern, replacement, function)
    return function


def names(nm, library):
    """The function of each name. Of a constructor or destructor, the first variant is that of whole objects."""
    mangled = defined(nm, library, "--no-demangle", "--no-sort")
    functions = defined(nm, library, "--demangle", "--no-sort")
    assert len(mangled) == len(functions)
    found = {}
    for (kind, name), (_, function) in sorted(zip(mangled, functions)):
        if kind in "TW" and not re.search(r"[CD][02]E", name):
            assert found.setdefault(shortened(function), name) == name, function
    return found


def table(found):
    return HEAD + "".join(f"| `{function}` | `{name}` |\n" for function, name in sorted(found.items()))


def main():
    if len(sys.argv) not in (3, 4) or sys.argv[3:] not in ([], ["--check"]):
        sys.exit(__doc__)
    old = PAGE.read_text()
    before, rest = old.split(HEAD)
    after = re.sub(r"\A(\|.*\n)*", "", rest)
    new = before + table(names(*sys.argv[1:3])) + after
    if sys.argv[3:]:
        sys.exit(0 if new == old else f"the names in {PAGE.name} are out of date: run {sys.argv[0]}")
    PAGE.write_text(new)


if __name__ == "__main__":
    main()
