#!/usr/bin/env python3
"""Runs the benchmark of build/bench, with the default and with a warm heap, and writes docs/performance.md and
docs/performance.svg.

usage: run_benchmark.py [REPETITIONS]   (default: 5)
"""

import json
import os
import pathlib
import platform
import statistics
import subprocess
import sys
import typing

import benchmark_commands

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/bench/bench/benchmark_qo_html"
PAGES = ROOT / "build/bench/pages"
DOCS = ROOT / "docs"

WORK = {
    "parse/pages": "parse and free",
    "serialise/pages": "`outerHTML` of whole documents",
    "text/pages": "`textContent` of whole documents",
    "find_a_href/pages": '`find("a[href]")`',
    "find_ul_li/pages": '`find("ul > li")`',
    "all_elements/pages": '`getElementsByTagName("*")`',
    "serialise/scattered": "`outerHTML` of scattered nodes",
    "find_a_href/scattered": '`find("a[href]")` among scattered nodes',
    "decode/references": "decode references",
    "form_values/form": "form values of 3,000 controls",
    "parse/deep": "parse: 200 levels, over and over",
    "parse/flat": "parse: 100,000 siblings",
    "parse/comments": "parse: 100,000 comments",
    "parse/ampersands": "parse: 400,000 ampersands",
    "parse/attributes": "parse: 5,000 attributes on one tag",
}
# Allocators of the host's process, by what it is started with.
HEAPS = {
    "glibc": {},
    "glibc, `GLIBC_TUNABLES=glibc.malloc.mxfast=0`": {"GLIBC_TUNABLES": "glibc.malloc.mxfast=0"},
    "glibc, `GLIBC_TUNABLES=glibc.malloc.hugetlb=1`": {"GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"},
    "mimalloc, `LD_PRELOAD=libmimalloc.so.2`": {"LD_PRELOAD": "libmimalloc.so.2"},
}
PEERS = ["libxml2", "gumbo", "floor", "record"]
CHART = ["parse/pages", "serialise/pages", "text/pages", "find_a_href/pages", "find_ul_li/pages", "all_elements/pages"]


class Row(typing.NamedTuple):
    """One work by one of those who do it. Times are milliseconds of the processor."""
    least: float
    median: float
    speed: float  # MB/s, by the median
    per_node: float  # nanoseconds, by the median


def measure(repetitions, *options, environment=None):
    """{work/who: Row}, of interleaved repetitions, and the context."""
    command = [
        PROGRAM,
        PAGES,
        *options,
        f"--benchmark_repetitions={repetitions}",
        "--benchmark_min_time=0.1",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_format=json",
    ]
    run = subprocess.run(command, stdout=subprocess.PIPE, check=True, env={**os.environ, **(environment or {})})
    result = json.loads(run.stdout)
    times, medians = {}, {}
    for row in result["benchmarks"]:
        if row["run_type"] == "iteration":
            times.setdefault(row["run_name"], []).append(row["cpu_time"])
        elif row["aggregate_name"] == "median":
            medians[row["run_name"]] = row
    rows = {
        name: Row(min(all_times), statistics.median(all_times), medians[name].get("bytes_per_second", 0) / 1e6,
                  medians[name].get("ns_per_node", 0))
        for name, all_times in times.items()
    }
    return rows, result["context"]


def ratio(rows, work, peer):
    """By minima and by medians."""
    own, other = rows[f"{work}/qo_html"], rows.get(f"{work}/{peer}")
    return f"{other.least / own.least:.2f} / {other.median / own.median:.2f}" if other else ""


def table(rows):
    lines = [
        "| work | ms, least | ms | MB/s | ns a node | libxml2 | gumbo | the floor | bare records |",
        "|---|---|---|---|---|---|---|---|---|",
    ]
    for work, name in WORK.items():
        own = rows[f"{work}/qo_html"]
        ratios = " | ".join(ratio(rows, work, peer) for peer in PEERS)
        lines.append(f"| {name} | {own.least:.1f} | {own.median:.1f} | {own.speed:.0f} | {own.per_node:.0f} | {ratios} |")
    return "\n".join(lines)


def page_table(rows):
    """What qo_page does, beside others at the same work."""
    def line(name, work, *others):
        own = rows[f"page/{work}/qo_page"].median
        shares = [(label, own / rows[other].median) for label, other in others]
        return f"| {name} | {own:.1f} | " + ", ".join(
            f"{share:.2f} × {label}" if share >= 1 else f"1/{1 / share:.1f} of {label}" for label, share in shares) + " |"
    return "\n".join([
        "| work | ms | its time is |", "|---|---|---|",
        line("read and free", "read", ("`parseHtml` and free", "parse/pages/qo_html"), ("libxml2's", "parse/pages/libxml2")),
        line("`a[href]`", "select_a_href", ("a bare walk", "page/select_a_href/walk"),
             ("libxml2's XPath", "page/select_a_href/libxml2")),
        line("`div:has(> a[href]):not(.x) > p:nth-child(2n+1 of .y)`", "select_has", ("a bare walk", "page/select_a_href/walk")),
        line("read a page of 50 MB, add a class to 400,000 cells", "edit_large", ("reading it", "page/edit_large/read")),
    ])


def growth_table(rows):
    """Time at a size and at four times that size."""
    lines = ["| work | size | ms | at four times the size | factor |", "|---|---|---|---|---|"]
    sizes = {}
    for name, row in rows.items():
        if name.startswith("growth/"):
            _, work, size = name.split("/")
            sizes.setdefault(work, []).append((int(size), row.median))
    for work, measured in sizes.items():
        (size, small), (_, large) = sorted(measured)
        lines.append(f"| {work.replace('_', ' ')} | {size:,} | {small:.1f} | {large:.1f} | {large / small:.1f} |")
    return "\n".join(lines)


def attribute_table(rows):
    lines = ["| attributes on one tag | ms | ns an attribute |", "|---|---|---|"]
    for count in (1000, 10000, 100000):
        time = rows[f"attributes/{count}/qo_html"].median
        lines.append(f"| {count:,} | {time:.2f} | {time * 1e6 / count:.0f} |")
    return "\n".join(lines)


def heap_table(repetitions):
    """What the host's allocator makes of the same work."""
    works = ["parse/pages", "serialise/pages", "find_a_href/pages"]
    names = "|".join(work.split("/")[0] for work in works)
    lines = ["| allocator | " + " | ".join(WORK[work] for work in works) + " |", "|---|" + "---|" * len(works)]
    for heap, environment in HEAPS.items():
        rows, _ = measure(repetitions, f"--benchmark_filter=^({names})/pages/qo_html", environment=environment)
        times = " | ".join(f"{rows[work + '/qo_html'].least:.1f}" for work in works)
        lines.append(f"| {heap} | {times} |")
    return "\n".join(lines)


def chart(rows):
    """Bars: the time of each peer as a multiple of the library's own."""
    bars, y = [], 30
    colours = {"libxml2": "#c0504d", "gumbo": "#9bbb59", "floor": "#8064a2"}
    for work in CHART:
        title = work.split("/")[0].replace("_", " ")
        bars.append(f'<text x="10" y="{y + 12}">{title}</text>')
        for peer, colour in colours.items():
            if f"{work}/{peer}" not in rows:
                continue
            factor = rows[f"{work}/{peer}"].least / rows[f"{work}/qo_html"].least
            bars.append(f'<rect x="130" y="{y}" width="{factor * 70:.1f}" height="14" fill="{colour}"/>')
            bars.append(f'<text x="{135 + factor * 70:.1f}" y="{y + 12}">{peer} {factor:.1f} ×</text>')
            y += 18
        y += 10
    head = f'<svg xmlns="http://www.w3.org/2000/svg" width="760" height="{y + 10}" font-family="sans-serif" font-size="12">'
    line = f'<line x1="200" y1="24" x2="200" y2="{y}" stroke="#4f81bd" stroke-dasharray="4 3"/>'
    caption = '<text x="10" y="16">time as a multiple of the time of qo_html (dashed line: 1 ×)</text>'
    return "\n".join([head, caption, *bars, line, "</svg>", ""])


def machine():
    model = [line for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines() if "model name" in line]
    name = model[0].split(":")[1].strip() if model else platform.machine()
    return f"{name}, {len(model)} cores, {platform.system()} {platform.release()}"


def commit():
    command = ["git", "-C", str(ROOT), "rev-parse", "--short", "HEAD"]
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout.strip()


def main():
    if len(sys.argv) > 2:
        sys.exit(__doc__)
    repetitions = int(sys.argv[1]) if len(sys.argv) == 2 else 5
    rows, context = measure(repetitions)
    warm, _ = measure(repetitions, "--warm-heap")
    (DOCS / "performance.svg").write_text(chart(rows))
    (DOCS / "performance.md").write_text(f"""# Performance

Written by `make bench` at commit {commit()} on {machine()}.

Times are processor time of {repetitions} interleaved repetitions in one process, medians unless the least is named. Work on pages goes over {context["pages"]} real
pages ({int(context["page_bytes"]):,} bytes, {int(context["page_nodes"]):,} nodes) from Debian's documentation packages;
{context["pages_refused"]} more were left out for all, since `parseHtml` refuses them. The columns on
the right are the other's time by that of qo_html, by minima / by medians: above 1, qo_html is faster. The floor is what the design cannot do without: for parsing, one `new` and `delete` of
a node-sized object a node, with its strings and attributes; for searching, a bare recursive walk; for decoding, one
look-up in a `std::unordered_map<std::string_view, ...>` a reference (a "node" is a reference there). Bare records are that
floor with the child vectors and class tokens, which the tree has to have as well. Scattered nodes were made in random
order, so that no two that are next to each other in the tree are so in memory.

![time of the peers as a multiple of the time of qo_html](performance.svg)

## Default heap

{table(rows)}

## Pages

`qo_page` on the same pages, with the default heap. Its tree of the largest page, with the source, takes {float(context["page_heap_ratio"]):.2f}
times the heap of that of `parseHtml`.

{page_table(rows)}

{growth_table(rows)}

## Whole commands

Minima of three rounds. The large page has 20 MB of the bodies of these pages, the 10,000 pages are these, over and over. The
results are what each tool found: tools that read otherwise find otherwise. `pup` and `hxselect` read one page a process. The ratio is that of
the time of processors; the memory is that of the largest process.

{benchmark_commands.table()}
## Warm heap

The first table, with a heap that keeps freed memory (`mallopt`: no trimming, no `mmap`).

{table(warm)}

## Allocators

The library allocates with `new`: how fast that is, is for the host's process to choose. Least ms.

{heap_table(repetitions)}

## Many attributes

{attribute_table(rows)}

## Memory

The tree of the largest page ({int(context["largest_page_bytes"]):,} bytes) takes {float(context["heap_bytes_per_node"]):.0f}
bytes of heap a node; beyond that and the argument passed by value, parsing keeps no copy of the page.
""")


if __name__ == "__main__":
    main()
