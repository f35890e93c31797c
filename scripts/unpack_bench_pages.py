#!/usr/bin/env python3
"""Unpacks real HTML pages from Debian's documentation packages into a folder, for the benchmark.

Of each package it takes an even sample of the pages, in the order of their names, and the largest page.

usage: unpack_bench_pages.py FOLDER
"""

import gzip
import pathlib
import subprocess
import sys
import tempfile

PACKAGES = """
    apache2-doc debian-policy git-doc libstdc++-12-doc nodejs-doc python-django-doc python3.11-doc qtbase5-doc-html
    sqlite3-doc vim-doc weechat-doc
""".split()
BYTES_PER_PACKAGE = 4_000_000
SUFFIXES = (".html", ".html.en", ".html.gz", ".htm")


def read(page):
    return gzip.decompress(page.read_bytes()) if page.suffix == ".gz" else page.read_bytes()


def sample(pages):
    """An even sample of [(name, text)] of about BYTES_PER_PACKAGE, the largest page included."""
    total = sum(len(text) for _, text in pages)
    largest = max(pages, key=lambda page: len(page[1]))
    step = max(1.0, total / BYTES_PER_PACKAGE)
    chosen = [pages[int(i * step)] for i in range(int(len(pages) / step))]
    return chosen if largest in chosen else chosen + [largest]


def unpack(package, folder):
    with tempfile.TemporaryDirectory() as work:
        # apt fetches as a user of its own, which may write here
        pathlib.Path(work).chmod(0o777)
        subprocess.run(["apt-get", "download", "-qq", package], cwd=work, check=True)
        (archive,) = pathlib.Path(work).glob("*.deb")
        subprocess.run(["dpkg-deb", "-x", archive, f"{work}/tree"], check=True)
        files = sorted(
            path
            for path in pathlib.Path(work, "tree").rglob("*")
            if path.name.endswith(SUFFIXES) and path.is_file() and not path.is_symlink()
        )
        pages = [(path.relative_to(f"{work}/tree"), read(path)) for path in files]
        for number, (_, text) in enumerate(sample(pages)):
            (folder / f"{package}-{number:04}.html").write_bytes(text)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    done = folder / "unpacked"
    if done.exists():
        return
    folder.mkdir(parents=True, exist_ok=True)
    for package in PACKAGES:
        unpack(package, folder)
    done.touch()


if __name__ == "__main__":
    main()
