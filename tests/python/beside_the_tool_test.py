"""Random pages and edits: what the module makes of them is what the tool does."""

import os
import subprocess

import pytest
from hypothesis import given, settings, strategies

import qo
from nodes_test import sources

TOOL = os.environ.get("QO_TOOL", "")
pytestmark = pytest.mark.skipif(TOOL == "", reason="without the tool")

SELECTORS = strategies.sampled_from(["a", "p", "div, li", "[id]", "*", "i:first-child", ":has(b)"])

# As options of the tool, and as calls.
OPERATIONS = strategies.sampled_from([
    (["--attr", "k=a\"b"], lambda edit, target: edit.attr(target, "k", "a\"b")),
    (["--add-class", "k"], lambda edit, target: edit.add_class(target, "k")),
    (["--text", "<&"], lambda edit, target: edit.text(target, "<&")),
    (["--html", "<u>x</u>"], lambda edit, target: edit.html(target, "<u>x</u>")),
    (["--before", "<hr>"], lambda edit, target: edit.before(target, "<hr>")),
    (["--append", "é"], lambda edit, target: edit.append(target, "é")),
    (["--wrap", "<u></u>"], lambda edit, target: edit.wrap(target, "<u></u>")),
    (["--unwrap"], lambda edit, target: edit.unwrap(target)),
    (["--rename", "u"], lambda edit, target: edit.rename(target, "u")),
    (["--remove"], lambda edit, target: edit.remove(target)),
])


def run(source, *arguments):
    done = subprocess.run([TOOL, *arguments], input=source, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    return done.returncode, done.stdout, done.stderr


@settings(max_examples=60, deadline=None)
@given(sources, SELECTORS, OPERATIONS)
def test_edits(source, selector, operation):
    options, call = operation
    page = qo.parse(source)
    status, out, complaint = run(page.source, "edit", selector, *options)
    try:
        result = call(page.edit(code="keep"), selector).apply()
    except qo.EditRefused as refused:
        assert status == 2 and str(refused).encode("utf-8", "surrogateescape") in complaint
    else:
        assert out == result.source and status in (0, 1)


@settings(max_examples=30, deadline=None)
@given(sources, SELECTORS)
def test_selectors(source, selector):
    page = qo.parse(source)
    _, out, _ = run(page.source, "select", "--count", selector)
    assert int(out) == len(page.select(selector))
