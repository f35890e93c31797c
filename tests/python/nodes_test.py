"""Nodes, attributes and selectors."""

import copy
import pickle

import pytest
from hypothesis import given, strategies

import qo

SOURCE = """<!DOCTYPE html>
<ul id=list class='a b'>
  <li data-x="1 &amp; 2" DATA-X=3 hidden>one {{ n }}
  <li><!-- c --><a href="/x?a=1&amp;b">t&eacute;xt</a> <b>  é </b>
</ul>
<script>if (a < b) {}</script>
"""


@pytest.fixture
def page():
    return qo.parse(SOURCE)


@pytest.mark.parametrize("expression, expected", [
    ("page.kind", "document"),
    ("page.name", ""),
    ("page.parent", None),
    ("page.first('ul').parent == page", True),
    ("page.first('li').name", "li"),
    ("page.first('li')['DATA-x']", "1 & 2"),
    ("page.first('li').get('data-x', 7)", "1 & 2"),
    ("page.first('li').get('none', 7)", 7),
    ("page.first('li').get('none')", None),
    ("page.first('li').get('hidden')", ""),
    ("'HIDDEN' in page.first('li'), 'id' in page.first('li')", (True, False)),
    ("dict(page.first('li').attrs)", {"data-x": "1 & 2", "hidden": ""}),
    ("len(page.first('li').attrs), 'Data-X' in page.first('li').attrs, 3 in page.first('li').attrs", (2, True, False)),
    ("[(a.name, a.value, a.written, a.quote, a.has_value) for a in page.first('li').attributes]",
     [("data-x", "1 & 2", "1 &amp; 2", '"', True), ("DATA-X", "3", "3", "", True), ("hidden", "", "", "", False)]),
    ("[bytes(page.data[slice(*a.value_span)]) for a in page.first('li').attributes]", [b"1 &amp; 2", b"3", b""]),
    ("[bytes(page.data[slice(*a.name_span)]) for a in page.first('a').attributes]", [b"href"]),
    ("[bytes(page.data[slice(*a.span)]) for a in page.first('a').attributes]", [b'href="/x?a=1&amp;b"']),
    ("page.first('a').text", "téxt"),
    ("page.first('a').get_text('written')", "t&eacute;xt"),
    ("page.first('li + li').get_text('readable')", "téxt é"),
    ("page.first('script').text", "if (a < b) {}"),
    ("page.first('a').html", '<a href="/x?a=1&amp;b">t&eacute;xt</a>'),
    ("page.first('a').inner_html", "t&eacute;xt"),
    ("page.first('ul').position", (2, 1)),
    ("page.first('a').position", (4, 17)),
    ("page.first('script').position", (6, 1)),
    ("[node.kind for node in page.children]", ["doctype", "text", "element", "text", "element", "text"]),
    ("page.first('a').previous.html, page.first('a').next.html", ("<!-- c -->", " ")),
    ("[node.name for node in page.first('a').ancestors()]", ["li", "ul", ""]),
    ("[node.name for node in page.first('ul').walk() if node.kind == 'element']", ["li", "li", "a", "b"]),
    ("page.first('a').closest('ul').get('id'), page.first('a').closest('p')", ("list", None)),
    ("page.first('a').matches('li a'), page.first('a').matches(qo.Selector('ul > a'))", (True, False)),
    ("[len(page.select('li', limit)) for limit in (0, 1, 9)]", [0, 1, 2]),
    ("[node.name for node in page.first('li + li').select('*')]", ["a", "b"]),
    ("page.first('video')", None),
    ("page.first('b').path", "#list > li:nth-of-type(2) > b"),
    ("page.first('script').path", "script:root"),
    ("page.path, page.dialect, page.encoding", (None, "html", "utf-8")),
    ("page.first('ul') < page.first('li') <= page.first('li')", True),
    ("page.first('li') == qo.parse(page.source).first('li')", False),
    ("page.first('li') == 3, page.first('li') != page.select('li')[0]", (False, False)),
    ("len({page.first('li'), page.select('li')[0], page.select('li')[1]})", 2),
    ("page.node_at(page.first('a').index) == page.first('a')", True),
    ("repr(page.first('a'))", """<qo.Node element 4:17 '<a href="/x?a=1&amp;b">t&eacute;xt</a>'>"""),
    ("page.first('a')._repr_html_()",
     "<pre>&lt;a href=&quot;/x?a=1&amp;amp;b&quot;&gt;t&amp;eacute;xt&lt;/a&gt;</pre>"),
])
def test_what_a_node_tells(page, expression, expected):
    assert eval(expression, {"qo": qo, "page": page}) == expected


@pytest.mark.parametrize("expression, error, words", [
    ("page['x']", KeyError, "x"),
    ("page.select(3)", TypeError, "str or a qo.Selector"),
    ("page.select(b'a')", TypeError, "str or a qo.Selector"),
    ("page.select('a', -1)", ValueError, "below 0"),
    ("page.select('a[')", qo.SelectorError, "the end"),
    ("page.get_text('plain')", ValueError, "decoded, written, readable"),
    ("page.node_at(999)", IndexError, "number"),
    ("iter(page)", TypeError, "not iterable"),
    ("page[0]", TypeError, ""),
    ("qo.parse(5)", TypeError, "bytes-like"),
    ("qo.parse('', dialect='x')", ValueError, "html, plain"),
    ("qo.parse('', encoding='x')", LookupError, "x"),
    ("qo.parse(b'\\xff\\xfe<\\0')", qo.Error, "UTF-16"),
    ("qo.Node()", TypeError, "never made"),
    ("qo.Page.__new__(qo.Page)", TypeError, "never made"),
    ("qo.Node.__new__(qo.Node)", TypeError, "never made"),
    ("qo.Attribute.__new__(qo.Attribute)", TypeError, "never made"),
    ("qo.Selector()", TypeError, ""),
    ("qo.Selector.__new__(qo.Selector)", TypeError, ""),
    ("setattr(page, 'source', b'')", AttributeError, ""),
])
def test_what_is_an_error(page, expression, error, words):
    with pytest.raises(error, match=words):
        eval(expression, {"qo": qo, "page": page})


def test_an_error_of_a_selector_shows_the_place():
    with pytest.raises(qo.SelectorError) as caught:
        qo.Selector("p, a[")
    assert (caught.value.offset, caught.value.shown) == (5, "p, a[\n     ^")


@pytest.mark.parametrize("make", [copy.copy, copy.deepcopy, lambda value: pickle.loads(pickle.dumps(value))])
def test_copies_and_pickles_are_the_same(make):
    page = qo.parse("<p>é</p>".encode("latin-1"), dialect="plain", encoding="latin-1")
    again = make(page)
    assert (again.source, again.dialect, again.encoding) == (page.source, "plain", page.encoding)
    assert make(page.first("p")).html == "<p>é</p>"
    assert make(qo.Selector("p")) == qo.Selector("p")


# What pages are made of, most of it in the wrong place.
pieces = strategies.sampled_from([
    "<p>", "</p>", "<div id=a>", "</div>", "<a href='x&amp;y'>", "</a>", "<li>", "<table><tr><td>", "</table>", "<b",
    ">", "<!--", "-->", "{{ x }}", "{% if y %}", "{% endif %}", "<?php 1 ?>", "<my-{{ x }} k>", "<br>", "é", " ", "\n",
    "&lt;", "<script>", "</script>", "\udcff", "id=b", "<i id=b>", "<x:y>", "</>"])
sources = strategies.lists(pieces, max_size=30).map("".join)


@given(sources)
def test_any_page_is_read_and_tells_where_its_nodes_are(source):
    page = qo.parse(source)
    assert page.html == source
    assert page.source == source.encode("utf-8", "surrogateescape") == bytes(page.data)
    nodes = list(page.walk())
    assert [node.index for node in nodes] == list(range(1, len(nodes) + 1))
    for node in nodes:
        begin, end = node.span
        assert bytes(page.data[begin:end]).decode("utf-8", "surrogateescape") == node.html
        assert node.parent in node.ancestors() and node in node.parent.children
        line, column = node.position
        assert begin == sum(len(text) + 1 for text in page.source.split(b"\n")[:line - 1]) + column - 1


@given(sources)
def test_a_path_finds_its_element_alone(source):
    page = qo.parse(source)
    for element in page.select("*"):
        assert page.select(element.path) == [element]
