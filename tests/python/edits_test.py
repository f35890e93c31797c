"""Edits and what comes of them."""

import os
import stat

import pytest

import qo

SOURCE = "<div ID=d class='a'><p k=1 >one</p> <p>two <b>x</b></p></div>\n"


def with_b(replacement):
    """The source with something else in the place of its <b>."""
    return SOURCE[:-1].replace("<b>x</b>", replacement)


@pytest.mark.parametrize("edit, expected", [
    (lambda e: e.attr("p", "k", "a\"b&"),
     """<div ID=d class='a'><p k="a&quot;b&" >one</p> <p k="a&quot;b&">two <b>x</b></p></div>"""),
    (lambda e: e.attr("div", "id", None), "<div class='a'><p k=1 >one</p> <p>two <b>x</b></p></div>"),
    (lambda e: e.set("b", {"hidden": True, "id": "é", "none": False}), with_b("<b hidden id=\"é\">x</b>")),
    (lambda e: e.add_class("div", "b", "a"), "<div ID=d class='a b'><p k=1 >one</p> <p>two <b>x</b></p></div>"),
    (lambda e: e.remove_class("div", "a").text("b", "<"),
     "<div ID=d class=''><p k=1 >one</p> <p>two <b>&lt;</b></p></div>"),
    (lambda e: e.html("b", "<i>y</i>"), with_b("<b><i>y</i></b>")),
    (lambda e: e.prepend("b", "1").append("b", qo.Markup("<br>")), with_b("<b>1x<br></b>")),
    (lambda e: e.before("b", "1").after("b", "2"), with_b("1<b>x</b>2")),
    (lambda e: e.replace("b", "<i></i>"), with_b("<i></i>")),
    (lambda e: e.wrap("b", "<i></i>"), with_b("<i><b>x</b></i>")),
    (lambda e: e.unwrap("b"), with_b("x")),
    (lambda e: e.rename(qo.Selector("b"), "i"), with_b("<i>x</i>")),
    (lambda e: e.remove("b"), with_b("")),
    (lambda e: e.sub_text("p", "(o)", "$1$1"), "<div ID=d class='a'><p k=1 >oone</p> <p>twoo <b>x</b></p></div>"),
    (lambda e: e.sub_attr("p", "k", r"\d", "n"), "<div ID=d class='a'><p k=n >one</p> <p>two <b>x</b></p></div>"),
    (lambda e: e.text("video", "nothing is found"), SOURCE[:-1]),
    (lambda e: e, SOURCE[:-1]),
])
def test_operations(edit, expected):
    page = qo.parse(SOURCE)
    result = edit(page.edit()).apply()
    assert str(result) == expected + "\n"
    assert result.source == str(result).encode() and result.page.html == str(result)
    assert bool(result) == (str(result) != SOURCE) == bool(result.diff()) == bool(result.changes)
    assert page.html == SOURCE


def test_targets():
    page = qo.parse(SOURCE)
    for target in ["p", qo.Selector("p"), page.select("p"), (p for p in page.select("p")), set(page.select("p"))]:
        assert str(page.edit().rename(target, "q").apply()).count("<q") == 2
    assert str(page.edit().rename(page.first("p"), "q").apply()).count("<q") == 1


def test_changes_tell_what_became_of_what():
    page = qo.parse(SOURCE)
    result = page.edit().text("b", "yy").remove("p:first-child").apply()
    pieces, end = [], 0
    for change in result.changes:
        pieces += [page.source[end:change.old[0]], result.source[slice(*change.new)]]
        end = change.old[1]
    assert b"".join(pieces) + page.source[end:] == result.source
    assert [change.node.name for change in result.changes] == ["p", "b"]


@pytest.mark.parametrize("act, error, words", [
    (lambda e: e.text("b", "{{ x }}"), qo.Error, "begins template code"),
    (lambda e: e.attr("b", "k", "<?php"), qo.Error, "begins template code"),
    (lambda e: e.attr("b", "a b", "x"), qo.Error, ""),
    (lambda e: e.attr("b", "k", 3), TypeError, "str"),
    (lambda e: e.text("b", b"x"), TypeError, "str"),
    (lambda e: e.text([None], "x"), TypeError, "None"),
    (lambda e: e.text(3, "x"), TypeError, ""),
    (lambda e: e.text(["p"], "x"), TypeError, ""),
    (lambda e: e.text(qo.parse(SOURCE).select("b"), "x"), ValueError, "another page"),
    (lambda e: e.sub_text("b", "(", ""), qo.Error, ""),
    (lambda e: e.html("b", "</b>").apply(), qo.EditRefused, "would end <b>"),
    (lambda e: e.apply(on_refused="no"), ValueError, "'raise', 'skip'"),
])
def test_what_is_refused_changes_nothing(act, error, words):
    edit = qo.parse(SOURCE).edit()
    with pytest.raises(error, match=words):
        act(edit)


def test_a_refused_edit_tells_its_node_and_place():
    page = qo.parse("<br>\n" + SOURCE)
    with pytest.raises(qo.EditRefused) as caught:
        page.edit().html("b", "</b>").apply()
    assert caught.value.node == page.first("b")
    assert (caught.value.line, caught.value.column) == (2, caught.value.offset - 4)
    with pytest.raises(qo.EditRefused) as caught:
        page.edit().text("br", "x").apply()
    assert (caught.value.node, caught.value.line) == (page.first("br"), 1)


def test_what_is_refused_can_be_left_out():
    page = qo.parse("<p id=1>a</p><br><p id=2>b</p><i>c</i><script>d</script>")
    edit = page.edit().text("p, br", "<").add_class("br", "k").html("i", "</i>").text("script", "</script>")
    result = edit.apply(on_refused="skip")
    assert str(result) == "<p id=1>&lt;</p><br><p id=2>&lt;</p><i>c</i><script>d</script>"
    assert sorted(one.node.name for one in result.refused) == ["br", "i", "script"]
    with pytest.raises(qo.EditRefused):
        edit.apply()


def test_code_in_text_may_be_kept():
    assert str(qo.parse("<b>x</b>").edit(code="keep").text("b", "{{ y }}").apply()) == "<b>{{ y }}</b>"


def test_an_edit_as_a_context():
    page = qo.parse(SOURCE)
    with page.edit() as edit:
        edit.remove("div")
    assert str(edit.result) == "\n"
    with pytest.raises(KeyError), page.edit() as edit:
        raise KeyError
    assert edit.result is None


def test_bytes_that_are_no_text_come_through():
    page = qo.parse(b"<p>\xff\x80</p><b></b>")
    assert page.edit().attr("b", "id", "x").apply().source == b'<p>\xff\x80</p><b id="x"></b>'
    assert page.first("p").text.encode("utf-8", "surrogateescape") == b"\xff\x80"


def test_another_encoding():
    source = "<p>Ärger</p><b>&eacute;</b>".encode("cp1252")
    page = qo.parse(source, encoding="cp1252")
    assert (page.first("p").text, page.first("b").text, page.source) == ("Ärger", "é", source)
    assert page.edit().text("b", "€").apply().source == "<p>Ärger</p><b>€</b>".encode("cp1252")
    with pytest.raises(qo.EditRefused, match="has no character"):
        page.edit().text("b", "→").apply()
    with pytest.raises(ValueError):
        qo.parse(b"\x81", encoding="cp1252")


def test_a_diff_has_the_lines_that_changed():
    page = qo.parse("<p>a</p>\r\n<b>x\x0c</b>\n<i>z</i>")
    assert page.edit().text("i", "y").apply().diff() == (
        "--- page\n+++ page\n@@ -1,3 +1,3 @@\n <p>a</p>\r\n <b>x\x0c</b>\n"
        "-<i>z</i>\n\\ No newline at end of file\n+<i>y</i>\n\\ No newline at end of file\n")


def test_a_result_is_written_to_its_file(tmp_path):
    path = tmp_path / "a.html"
    path.write_bytes(SOURCE.encode())
    path.chmod(0o640)
    link = tmp_path / "link.html"
    link.symlink_to(path)
    result = qo.read(link).edit().remove("div").apply()
    result.write()
    assert link.is_symlink() and path.read_bytes() == b"\n" and stat.S_IMODE(path.stat().st_mode) == 0o640
    result.write(tmp_path / "b.html")
    assert (tmp_path / "b.html").read_bytes() == b"\n"
    with pytest.raises(ValueError, match="has changed"):
        result.write()
    with pytest.raises(ValueError, match="no file"):
        qo.parse("").edit().apply().write()
    assert sorted(os.listdir(tmp_path)) == ["a.html", "b.html", "link.html"]


@pytest.mark.parametrize("markup, expected", [
    (qo.Markup("<b>{}</b>").format("<"), "<b>&lt;</b>"),
    (qo.Markup("{}").format(qo.Markup("<")), "<"),
    (qo.Markup("{!s:>3}|{:03}").format(qo.Markup("<"), 7), "  &lt;|007"),
    (qo.Markup("{a[k]}").format(a={"k": "&"}), "&amp;"),
    (qo.Markup("<br>") + "<", "<br>&lt;"),
    ("<" + qo.Markup("<br>"), "&lt;<br>"),
    (qo.Markup("<br>").join(["<", qo.Markup("<i>")]), "&lt;<br><i>"),
    (qo.escape("'\"&<>"), "&#x27;&quot;&amp;&lt;&gt;"),
    (qo.escape(qo.Markup("<")), "<"),
])
def test_markup(markup, expected):
    assert type(markup) is qo.Markup and str(markup) == expected
