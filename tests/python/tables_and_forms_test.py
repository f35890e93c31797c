"""Tables and forms."""

import pytest

import qo

TABLE = "<table><tr><th>item<th>price<tr><td rowspan=2>a &lt;<td>1<tr><td>2</table>"
FORM = """<form><input name=q value=v><input type=checkbox name=c value=1><input type=checkbox name=c value=2 checked>
<textarea name=t>é</textarea><button name=s value=go></form>"""


def test_a_table():
    table = qo.parse(TABLE).first("table").table()
    assert table.rows == [["item", "price"], ["a <", "1"], ["a <", "2"]]
    assert table.records() == [{"item": "a <", "price": "1"}, {"item": "a <", "price": "2"}]
    cell = table.cell(2, 0)
    assert (cell.node.name, cell.text, cell.row, cell.column, cell.rows, cell.columns) == ("td", "a <", 1, 0, 2, 1)
    assert "<tr><td>a &lt;</td><td>1</td></tr>" in table.node._repr_html_()
    for place in [(3, 0), (0, 2), (-1, 0)]:
        with pytest.raises(IndexError):
            table.cell(*place)


@pytest.mark.parametrize("source, words", [
    ("<table><tr><td>a", "names its columns"), ("<table><tr><th>a<th>a", "two columns"),
    ("<table>" + "<tr><td colspan=1000>" * 20_000, "")])
def test_a_table_that_has_no_records(source, words):
    with pytest.raises(ValueError, match=words):
        qo.parse(source).first("table").table().records()


def test_a_form():
    form = qo.parse(FORM).first("form").form()
    assert form.data() == [("q", "v"), ("c", "2"), ("t", "é")]
    assert form.urlencoded("s") == "q=v&c=2&t=%C3%A9&s=go"
    form["q"] = "<&\""
    form["c"] = ["1"]
    form["t"] = "a\nb"
    page = form.edit().apply().page
    assert page.first("form").form().data() == [("q", "<&\""), ("c", "1"), ("t", "a\nb")]
    assert "{{ x }}" not in page.html


@pytest.mark.parametrize("name, value, error", [
    ("none", "x", qo.Error), ("c", "3", qo.Error), ("q", "{{ x }}", qo.Error),
    ("q", 3, TypeError), ("q", [3], TypeError)])
def test_what_cannot_be_filled_in(name, value, error):
    form = qo.parse(FORM).first("form").form()
    with pytest.raises(error):
        form[name] = value
        form.edit()


def test_a_button_that_is_not_there():
    with pytest.raises(ValueError, match="no such button"):
        qo.parse(FORM).first("form").form().data("none")
