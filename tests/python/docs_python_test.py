"""Runs what docs/python.md and README show."""

import doctest
import os
import re

import pytest

import qo

PAGE = "<p class=a>Due <i class=b>x</i><u>y</u><s>z</s><b>v</b><br></p>"


def read(path):
    with open(os.path.join(os.environ["QO_SOURCE"], path), encoding="utf-8") as file:
        return file.read()


ROWS = re.findall(r"^\| `.*\| `(.*)` \|$", read("docs/python.md"), re.M)


@pytest.mark.parametrize("path, least", [("docs/python.md", 20), ("README.md", 3)])
def test_what_the_pages_show_is_printed(path, least):
    shown = "\n".join(re.findall(r"^```pycon\n(.*?)^```", read(path), re.S | re.M))
    test = doctest.DocTestParser().get_doctest(shown, {}, path, path, 0)
    runner = doctest.DocTestRunner()
    runner.run(test)
    assert runner.summarize().failed == 0 and len(test.examples) >= least


def test_each_row_does_what_it_says_it_is_for():
    page = qo.parse(PAGE)
    names = {"qo": qo, "text": PAGE, "page": page, "node": page.first("p"), "edit": page.edit()}
    values = {row: eval(row, names) for row in ROWS}
    assert len(values) > 20
    assert [row for row, value in values.items() if value in (None, [], "")] == [
        'node.get("href")', "node.next", 'node.closest("div")']
    assert str(names["edit"].result) == (
        '<p class=k>Due <i>text</i><b>other</b><wbr><em><s>z</s></em>v</p>')
