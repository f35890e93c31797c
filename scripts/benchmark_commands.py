#!/usr/bin/env python3
"""Times whole commands, beside those of other tools, and prints a table. What they print is compared, too.

usage: benchmark_commands.py [ROUNDS]   (default: 3)

Needs the tool in build/bench, the pages in build/bench/pages, the packages of the group "bench", and cheerio in
build/compare/node_modules.
"""

import html
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
QO = ROOT / "build/bench/src/cli/qo"
PAGES = ROOT / "build/bench/pages"
WORK = ROOT / "build/bench/commands"
FILES = 10000
LARGEST = 60000  # bytes of one of many pages

LXML = """
import sys, lxml.html
job, *files = sys.argv[1:]
for name in files:
    page = lxml.html.parse(name, lxml.html.HTMLParser(encoding="utf-8", huge_tree=True)).getroot()
    if page is None: continue
    links = page.iter("a")
    if job == "links":
        for a in links:
            if a.get("href") is not None: print(a.get("href"))
    else:
        for a in links: a.classes.add("k")
        sys.stdout.buffer.write(lxml.html.tostring(page, encoding="utf-8"))
"""

CHEERIO = """
const { load } = await import(process.argv[2]);
const fs = await import("node:fs");
const [job, ...files] = process.argv.slice(3);
for (const name of files) {
  const $ = load(fs.readFileSync(name, "utf8"));
  let out = "";
  if (job === "links") $("a[href]").each((_, a) => { out += a.attribs.href + "\\n"; });
  else { $("a").addClass("k"); out = $.html(); }
  fs.writeSync(1, out);
}
"""


IN_PLACE = "10,000 small files in place"


# Runs a command from a process that is small itself: a child's peak counts what it began with.
MEASURE = """
import os, subprocess, sys, time
start = time.monotonic()
process = subprocess.Popen(["bash", "-c", sys.argv[1]], stderr=subprocess.DEVNULL)
usage = os.wait4(process.pid, 0)[2]
print(time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024, file=sys.stderr)
"""


def make_small_files():
    """A folder of files of 2 kB."""
    for i in range(FILES):
        folder = WORK / "small" / f"{i % 100:02}"
        folder.mkdir(parents=True, exist_ok=True)
        lines = "<p title=0>some words on a line of a small page, which ends here</p>\n" * 28
        (folder / f"{i}.html").write_text(f"<!DOCTYPE html>\n<title>{i}</title>\n{lines}")


def make_pages():
    """One large page, a folder of many, and one of small files."""
    shutil.rmtree(WORK, ignore_errors=True)
    (WORK / "many").mkdir(parents=True)
    pages = [path for path in sorted(PAGES.rglob("*")) if path.is_file() and path.stat().st_size < LARGEST]
    texts = [path.read_bytes() for path in pages]
    for i in range(FILES):
        folder = WORK / "many" / f"{i % 100:02}"
        folder.mkdir(exist_ok=True)
        (folder / f"{i}.html").write_bytes(texts[i % len(texts)])
    bodies = [re.sub(rb"(?is)^.*?<body[^>]*>|</body>.*", b"", text) for text in texts if b"<body" in text.lower()]
    make_small_files()
    with open(WORK / "large.html", "wb") as large:
        large.write(b"<!DOCTYPE html><html><head><meta charset=utf-8><title>x</title></head><body>\n")
        while large.tell() < 20_000_000:
            large.writelines(b"<div>" + body + b"</div>\n" for body in bodies)
        large.write(b"</body></html>\n")


def commands():
    """(job, tool, command)"""
    (WORK / "links.py").write_text(LXML)
    (WORK / "links.mjs").write_text(CHEERIO)
    python = "/usr/bin/python3 links.py"
    node = f"node --max-old-space-size=8000 links.mjs {ROOT}/build/compare/node_modules/cheerio/dist/esm/index.js"
    many = "$(find many -name '*.html' | LC_ALL=C sort)"
    return [
        ("links of one page", "qo", f"{QO} select --raw -a href a large.html"),
        ("links of one page", "xmllint", "xmllint --html --huge --xpath //a/@href large.html"),
        ("links of one page", "lxml", f"{python} links large.html"),
        ("links of one page", "pup", "pup 'a[href] attr{href}' < large.html"),
        ("links of one page", "hxselect", "hxnormalize -x -l 10000 large.html | hxselect -s '\\n' 'a::attr(href)'"),
        ("links of one page", "cheerio", f"{node} links large.html"),
        ("links of 10,000 pages", "qo", f"{QO} select --raw --no-filename --threads 1 -r -a href a many"),
        ("links of 10,000 pages", "qo, 2 threads", f"{QO} select --raw --no-filename --threads 2 -r -a href a many"),
        ("links of 10,000 pages", "xmllint", f"xmllint --html --xpath //a/@href {many}"),
        ("links of 10,000 pages", "lxml", f"{python} links {many}"),
        ("links of 10,000 pages", "pup", f"for page in {many}; do pup 'a[href] attr{{href}}' < $page; done"),
        ("links of 10,000 pages", "cheerio", f"{node} links {many}"),
        ("a class on every link", "qo", f"{QO} edit a --add-class k large.html"),
        ("a class on every link", "lxml", f"{python} class large.html"),
        ("a class on every link", "cheerio", f"{node} class large.html"),
        (IN_PLACE, "qo", f"{QO} edit -r -i --threads 1 p --attr title=1$RANDOM small; cat small/00/*"),
        (IN_PLACE, "qo, 2 threads", f"{QO} edit -r -i --threads 2 p --attr title=1$RANDOM small; cat small/00/*"),
        (IN_PLACE, "sed", "find small -type f -print0 | xargs -0 sed -i s/title=[0-9]*/title=1$RANDOM/; cat small/00/*"),
    ]


def run(command):
    """Seconds, those of processors, megabytes at the peak of the largest process, and what was printed."""
    with open(WORK / "out", "wb") as stdout:
        measured = subprocess.run([sys.executable, "-c", MEASURE, command], cwd=WORK, stdout=stdout, stderr=subprocess.PIPE,
                                  text=True, check=True)
    return *map(float, measured.stderr.split()), (WORK / "out").read_bytes().decode("utf-8", "replace")


def links_in(job, output):
    """How many results are in what a tool printed."""
    if job == IN_PLACE:
        return output.count("<p title=1")
    if job == "a class on every link":
        return len(re.findall(r"""<a\s[^>]*class=["']?(?:[^"'>]*\s)?k["'\s>]""", output, re.I))
    return len([line for line in html.unescape(output).splitlines() if line.strip()])


def table(rounds=3):
    make_pages()
    best = {}
    for _ in range(rounds):
        for job, tool, command in commands():
            *costs, output = run(command)
            known = best.get((job, tool), (costs, 0))[0]
            best[job, tool] = ([min(pair) for pair in zip(costs, known)], links_in(job, output))
    lines = ["| job | tool | seconds | of processors | beside qo | MB | results |", "|---|---|---|---|---|---|---|"]
    for (job, tool), ((seconds, busy, megabytes), count) in best.items():
        ratio = busy / best[job, "qo"][0][1]
        lines.append(f"| {job} | {tool} | {seconds:.2f} | {busy:.2f} | {ratio:.2f} × | {megabytes:.0f} | {count:,} |")
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    print(table(int(sys.argv[1]) if len(sys.argv) > 1 else 3), end="")
