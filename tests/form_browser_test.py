#!/usr/bin/env python3
"""Compares what `qo form --pairs` gives for forms with the FormData of Chromium.

usage: form_browser_test.py QO [COUNT | FILE...]

Without files, of COUNT random pages. They have no markup whose parts a browser moves, nor what this one takes otherwise
than the standard: controls in a datalist, an empty "dirname", that of a submit button, of a hidden "_charset_" and in a bdi, powers
of ten in a range.
"""

import itertools
import json
import os
import random
import re
import subprocess
import sys
import tempfile

from chromium_support import CHROMIUM, GIVE_BACK, SKIPPED, evaluated

COUNT = 300
AT_ONCE = 300  # pages in one run of the browser

# A live document each: only there does a form keep the controls that the parser gives it. The policy is that of the
# frames, too: nothing is loaded, which the parser would wait for.
COLLECTOR = """<!DOCTYPE html><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; script-src 'unsafe-inline'"><body><script>
const forms = page => {
  const frame = document.createElement("iframe");
  frame.setAttribute("sandbox", "allow-same-origin");
  document.body.append(frame);
  const inner = frame.contentDocument;
  inner.open();
  inner.write(page);
  inner.close();
  const text = value => typeof value === "string" ? value : "";
  const found = Array.from(inner.querySelectorAll("form"), form =>
    Array.from(new FormData(form), ([name, value]) => [name, text(value)]));
  frame.remove();
  return found;
};
const result = DATA.map(forms);
""" + GIVE_BACK

VALUES = {
    "number": "1 007 -.5 1e3 1. +1 1e999 1e-999 1,5 0x1 - 1.e2".split() + ["", " 1"],
    "range": "0 5 7.5 33.333 -4 400 x .1 0.30".split() + ["", " 1"],
    "date": "2024-02-29 2023-02-29 0000-01-01 2024-1-01 12024-12-31 275760-09-13 275760-09-14 x".split(),
    "month": "2024-02 2024-13 0000-01 275760-09 275760-10 2024".split(),
    "week": "2024-W01 2020-W53 2021-W53 2024-W00 2024-w01 275760-W38 1976-W53 1998-W53 2004-W53".split(),
    "time": "12:34 24:00 12:34:56 12:34:56.7 12:34:56.7890 12:60 1:00".split(),
    "datetime-local": "2024-02-29T12:34 2024-02-29t12:34 2024-02-30T12:34 02024-02-29T12:34:00.500 2024-02-29T24:00 "
                      "275760-09-13T00:00 275760-09-13T00:00:01 2024-02-29T12:34:00".split() + ["2024-02-29 12:34:05"],
    "color": ["#ABC", "#12aBcD", "#12345", "#AABBCCDD", " #abcdef ", "", "nothing", "#1234"],
    "email": [" a@b ", "a@b , c@d,,", "a&#10;b"],
}
TEXTS = ["", "a", " a  b ", "a\nb", "a\r\nb\rc", "&lt;b&gt; &amp;amp; &notin; &notit;", "a&#10;b&#13;c", "ü€😀", "&#x5d0;", "1%+ 2",
         "\n\nx", "&#10;y", "&nbsp;z&nbsp;", "a=1&copy=2&copy;"]
TYPES = ["text", "search", "tel", "url", "email", "password", "hidden", "number", "range", "date", "month", "week", "time",
         "datetime-local", "color", "checkbox", "radio", "file", "submit", "image", "reset", "button", "what", None]
INLINE = ["span", "b", "label", "div", "p", "ul", "section"]


class Pages:
    """Random pages full of forms."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.ids = []

    def chance(self, share):
        return self.random.random() < share

    def pick(self, values):
        return self.random.choice(values)

    def name(self, tag):
        return "".join(self.random.choice((c.upper(), c)) for c in tag) if self.chance(0.1) else tag

    @staticmethod
    def value(value):
        return '"' + value.replace('"', "&quot;") + '"'

    def attributes(self, *choices):
        """Of (share, name, values); no value where there are no values."""
        out = [self.name(name) + ("" if values is None else "=" + self.value(self.pick(values)))
               for share, name, values in choices if self.chance(share)]
        self.random.shuffle(out)
        return "".join(" " + attribute for attribute in out)

    def common(self, names):
        return self.attributes(
            (0.9, "name", names), (0.12, "disabled", [""]), (0.08, "form", self.ids + ["none", ""]),
            (0.1, "dirname", ["d", "e"]), (0.08, "dir", ["ltr", "rtl", "auto", "x"]), (0.1, "readonly", None))

    def input(self):
        kind = self.pick(TYPES)
        groups = ["r", "s"] if kind == "radio" else ["a", "b", "c d", "&eacute;", "", "_charset_", "x\ny"]
        out = self.common(groups)
        if kind == "radio":  # which of a group is left depends on when the browser finds the form
            out = re.sub(' form="[^"]*"', "", out, flags=re.I)
        if kind in ("submit", "hidden"):
            out = re.sub(' dirname="."', "", out, flags=re.I)
        if kind is not None:
            out += ' type="' + self.name(kind) + '"'
        out += self.attributes(
            (0.8, "value", VALUES.get(kind, TEXTS)), (0.6 if kind in ("checkbox", "radio") else 0.05, "checked", [""]),
            (0.2, "multiple", None))
        if kind == "range":
            numbers = ["0", "-10", "10", "1.5", "0.1", "x", "", "1000", "3"]
            out += self.attributes((0.6, "min", numbers), (0.6, "max", numbers), (0.6, "step", numbers + ["any", "0.25", "7"]))
        return "<" + self.name("input") + out + ">"

    def option(self):
        out = "<option" + self.attributes((0.3, "selected", None), (0.2, "disabled", None), (0.4, "value", TEXTS)) + ">"
        out += self.pick(TEXTS + ["<b>x</b> y<!-- c --><script>s</script>", "<style>t</style>"])
        return out + self.pick(["", "</option>"])

    def options(self):
        return "".join(self.option() for _ in range(self.random.randrange(5)))

    def select(self):
        out = "<select" + self.common(["a", "f", "g"]) + self.attributes(
            (0.3, "multiple", None), (0.3, "size", ["0", "1", "2", " +3x", "-1", "", "x", "01", "10"])) + ">"
        for _ in range(self.random.randrange(3)):
            out += self.options()
            if self.chance(0.4):
                out += "<optgroup" + self.attributes((0.3, "disabled", None)) + ">" + self.options() + "</optgroup>"
        return out + "</select>"

    def textarea(self):
        return "<textarea" + self.common(["t", "u"]) + ">" + self.pick(TEXTS + ["<b>", "\r\n\r\na"]) + "</textarea>"

    def button(self):
        return "<button" + self.common(["h"]) + self.attributes((0.3, "value", TEXTS)) + ">x</button>"

    def fieldset(self, depth):
        out = "<fieldset" + self.attributes((0.5, "disabled", None)) + ">"
        for _ in range(self.random.randrange(3)):
            inner = self.pick(["", "<div>"])
            out += inner + "<legend>" + self.controls(depth + 1, 2) + "</legend>" + inner.replace("<", "</")
        return out + self.controls(depth + 1) + "</fieldset>"

    def wrapper(self, depth):
        tag = self.pick(INLINE)
        return f"<{tag}" + self.attributes((0.2, "dir", ["ltr", "rtl", "auto"])) + ">" + self.pick(["", "x", "&#x5d0;"]) + \
            self.controls(depth + 1) + f"</{tag}>"

    def table(self, depth):
        rows = "".join("<tr><td>" + self.controls(depth + 1, 2) for _ in range(1 + self.random.randrange(2)))
        return self.pick(["<table>", "<table><tbody>"]) + rows + "</table>"

    def template(self, depth):
        return "<template>" + self.controls(depth + 1, 2) + "</template>"

    def controls(self, depth=0, most=5):
        leaves = [self.input] * 6 + [self.select] * 2 + [self.textarea, self.button]
        nodes = [self.fieldset, self.wrapper, self.table, self.template]
        out = ""
        for _ in range(self.random.randrange(most)):
            deep = depth < 4 and self.chance(0.25)
            out += self.pick(nodes)(depth) if deep else self.pick(leaves)()
        return out

    def form(self):
        start = "<form" + self.attributes((0.7, "id", self.ids), (0.1, "dir", ["rtl"])) + ">"
        shape = self.random.randrange(10)
        if shape == 0:  # not around its controls
            hidden = '<input type=hidden name=h value="1">'
            return f"<table>{start}{hidden}<tr><td>{self.controls()}<tr><td>{self.controls()}</form></table>"
        if shape == 1:  # ends in front of what it is around
            return f"<div>{start}<div>{self.controls()}</form>{self.controls()}</div></div>"
        if shape == 2:  # ends after what it is in
            return f"<div>{start}{self.controls()}</div>{self.controls()}</form>"
        return start + self.controls() + "</form>"

    def page(self):
        self.ids = ["i", "j", "k"]
        out = self.pick(["", "<!DOCTYPE html>"]) + "<body>"
        for _ in range(1 + self.random.randrange(5)):
            out += self.form() + self.pick(["", self.controls(), '<b id="j"></b>'])
        return out

    def titled(self, count):
        """Pages, with themselves as titles."""
        for _ in range(count):
            page = self.page()
            yield page, page


def qo_forms(folder, page, options):
    path = os.path.join(folder, "form.html")
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(page)
    run = subprocess.run([sys.argv[1], "form", "--all", "--pairs", *options, path], capture_output=True, check=False)
    return json.loads(run.stdout)


def sending(forms):
    return [form for form in forms if form]


def compare(pages, options):
    """How many forms there are, and a text for each that differs."""
    differences = []
    count = 0
    with tempfile.TemporaryDirectory() as folder:
        for (title, page), expected in zip(pages, evaluated(COLLECTOR, [page for _, page in pages])):
            found = qo_forms(folder, page, options)
            count += len(expected)
            if len(found) > len(expected):  # a form in a form, which the browser drops
                found, expected = sending(found), sending(expected)
            if len(found) != len(expected):
                differences.append(f"{title}\n  {len(found)} forms, the browser has {len(expected)}")
            differences += [f"{title}\n  form {i + 1} gives {a}\n  the browser  {b}"
                            for i, (a, b) in enumerate(zip(found, expected)) if a != b]
    return count, differences


def read(path):
    with open(path, encoding="utf-8", errors="replace", newline="") as file:
        return path, file.read()


def main():
    if CHROMIUM is None:
        print("SKIPPED: there is no chromium to compare with")
        return SKIPPED
    files = [argument for argument in sys.argv[2:] if not argument.isdigit()]
    if files:
        pages, options = map(read, files), ["--no-templates"]  # the browser knows no templates
    else:
        count = int(sys.argv[2]) if len(sys.argv) > 2 else COUNT
        pages, options = Pages(1).titled(count), []
    results = [compare(batch, options) for batch in iter(lambda: list(itertools.islice(pages, AT_ONCE)), [])]
    total = sum(count for count, _ in results)
    differences = [difference for _, found in results for difference in found]
    print("\n".join(differences[:20] + [f"{total} forms, {len(differences)} differ"]))
    return 1 if differences or total == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
