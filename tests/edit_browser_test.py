#!/usr/bin/env python3
"""Compares what `qo edit` gives with the same edit made by Chromium on its own tree, and written out.

usage: edit_browser_test.py QO [COUNT]

Of COUNT random pages, each with one edit of one element. They leave out end tags, but have no markup whose parts a
browser moves. An edit may be refused; one that is made must be read by the browser as what was asked for.
"""

import random
import subprocess
import sys

from chromium_support import CHROMIUM, GIVE_BACK, SKIPPED, evaluated

COUNT = 1200
AT_ONCE = 600  # edits in one run of the browser

COLLECTOR = """<!DOCTYPE html><meta charset="utf-8"><body><script>
const parse = text => new DOMParser().parseFromString(text, "text/html");
const fragment = (page, text) => {
  const template = page.createElement("template");
  template.innerHTML = text;
  return template.content;
};
const operations = {
  rename(node, name) {
    const renamed = node.ownerDocument.createElement(name);
    for (const {name, value} of node.attributes) renamed.setAttribute(name, value);
    renamed.append(...node.childNodes);
    node.replaceWith(renamed);
  },
  wrap(node, text) {
    const outer = fragment(node.ownerDocument, text).firstElementChild;
    let inner = outer;
    while (inner.firstElementChild) inner = inner.firstElementChild;
    node.replaceWith(outer);
    inner.append(node);
  },
  unwrap: node => node.replaceWith(...node.childNodes),
  remove: node => node.remove(),
  text: (node, text) => { node.textContent = text; },
  html: (node, text) => { node.replaceChildren(fragment(node.ownerDocument, text)); },
  append: (node, text) => node.append(fragment(node.ownerDocument, text)),
  prepend: (node, text) => node.prepend(fragment(node.ownerDocument, text)),
  before: (node, text) => node.before(fragment(node.ownerDocument, text)),
  after: (node, text) => node.after(fragment(node.ownerDocument, text)),
  replace: (node, text) => node.replaceWith(fragment(node.ownerDocument, text)),
};
const difference = ([source, operation, argument, edited]) => {
  const page = parse(source);
  operations[operation](page.querySelector("[data-q]"), argument);
  const wanted = page.documentElement.outerHTML, found = parse(edited).documentElement.outerHTML;
  return wanted === found ? null : [wanted, found];
};
const result = DATA.map(difference);
""" + GIVE_BACK

INLINE = "b i em span a label code".split()
BLOCKS = "div section blockquote ul dl table p h2 pre select button".split()
WRAPPERS = ["<div></div>", "<p></p>", "<b></b>", '<a href="x"></a>', "<ul><li></li></ul>", '<div class="w"><span></span></div>',
            "<h2></h2>", "<li></li>", "<button></button>", "<dl><dd></dd></dl>", "<section>a<div></div>b</section>"]
MARKUP = ["x", "<i>n</i>", "<p>n</p>", "<div>n</div>", "<li>n</li>", "<br>", "<!-- c -->", "a<b>c</b>", "<dd>n</dd>", "<hr>",
          "<h2>n</h2>", "<ul><li>n</ul>", "<option>n</option>", "<a>n</a>", "<button>n</button>", "&amp;lt; d"]
NAMES = "div p b span li h2 section em a button pre dd i ul".split()

# What qo leaves in its place and a browser moves or drops: other content of these, and these elsewhere.
HAS_PARTS = {"table", "tbody", "tr", "select", "option"}
IS_PART = {"tbody", "tr", "td", "th", "option"}
INSIDE = {"text", "html", "append", "prepend", "rename", "unwrap"}
BESIDE = {"wrap", "unwrap", "before", "after", "replace", "rename"}

TEXTS = ["t", "a < b", "&lt;x", "\nz", "</p>", "é & ü", ""]


class Pages:
    """Random pages, each with a marked element."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def element(self, name, content, may_be_open=False):
        end = "" if may_be_open and self.random.random() < 0.5 else f"</{name}>"
        attribute = self.random.choice(["", "", " id=x", ' class="c d"'])
        return f"<{name}{attribute}>{content}{end}"

    def inline(self, depth, without=()):
        """Text and elements within a line; no element in one of its own kind."""
        out = ""
        for _ in range(self.random.randrange(1, 4)):
            names = [name for name in INLINE if name not in without]
            if depth > 0 and names and self.random.random() < 0.5:
                name = self.random.choice(names)
                out += self.element(name, self.inline(depth - 1, (*without, name)))
            else:
                out += self.random.choice(["word ", "x", "&amp;lt;", "<br>", "<img alt=i>", "<!-- c -->", "é"])
        return out

    def items(self, *names):
        return "".join(self.element(self.random.choice(names), self.inline(1), may_be_open=True)
                       for _ in range(self.random.randrange(1, 4)))

    def block(self, depth):
        name = self.random.choice(BLOCKS)
        if name in ("div", "section", "blockquote"):
            return self.element(name, self.blocks(depth - 1) if depth > 0 else self.inline(1))
        if name == "ul":
            return self.element(name, self.items("li"))
        if name == "dl":
            return self.element(name, self.items("dt", "dd"))
        if name == "select":
            return self.element(name, "".join(self.element("option", "o", True) for _ in range(2)))
        if name == "table":
            rows = "".join(self.element("tr", self.items("td", "th"), True) for _ in range(2))
            return self.element(name, self.element("tbody", rows, True))
        without = ("a", "label") if name == "button" else ()
        return self.element(name, self.inline(2, without), may_be_open=name == "p")

    def blocks(self, depth):
        return "".join(self.block(depth) for _ in range(self.random.randrange(1, 4)))

    def page(self):
        """With one of its elements marked."""
        body = self.blocks(2)
        starts = [i for i, c in enumerate(body) if c == "<" and body[i + 1].isalpha()]
        mark = self.random.choice(starts) + 1
        while body[mark].isalnum():
            mark += 1
        name = body[body.rindex("<", 0, mark) + 1:mark]
        return name, f"<!DOCTYPE html><meta charset=utf-8><body>{body[:mark]} data-q{body[mark:]}"

    def case(self):
        while True:
            name, page = self.page()
            operation, argument = self.operation()
            is_moved = (name in HAS_PARTS and operation in INSIDE) or (name in IS_PART and operation in BESIDE)
            if not is_moved:
                return page, operation, argument

    def operation(self):
        name = self.random.choice("rename wrap wrap unwrap remove text html append prepend before after replace".split())
        values = {"rename": NAMES, "wrap": WRAPPERS, "unwrap": [""], "remove": [""], "text": TEXTS}.get(name, MARKUP)
        return name, self.random.choice(values)


def edited(qo, page, operation, argument):
    """None when the edit is refused."""
    arguments = [] if operation in ("unwrap", "remove") else [argument]
    run = subprocess.run([qo, "edit", "[data-q]", "--" + operation, *arguments], input=page.encode(), capture_output=True)
    if run.returncode > 2:
        sys.exit(f"{page!r} {operation} {argument!r}: exit status {run.returncode}")
    return None if run.returncode == 2 else run.stdout.decode()


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    if CHROMIUM is None:
        print("there is no Chromium")
        return SKIPPED
    pages = Pages(1)
    cases, refused = [], 0
    for _ in range(int(sys.argv[2]) if len(sys.argv) == 3 else COUNT):
        case = pages.case()
        result = edited(sys.argv[1], *case)
        refused += result is None
        if result is not None:
            cases.append([*case, result])
    faults = 0
    for begin in range(0, len(cases), AT_ONCE):
        part = cases[begin:begin + AT_ONCE]
        for case, difference in zip(part, evaluated(COLLECTOR, part)):
            if difference is not None:
                faults += 1
                print(*case, "wanted:", difference[0], "found:", difference[1], sep="\n  ")
    print(f"{len(cases)} edits, {faults} otherwise than asked; {refused} refused")
    return 1 if faults or refused > len(cases) else 0


if __name__ == "__main__":
    sys.exit(main())
