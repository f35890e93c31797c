"""How long things live, what threads do, and what no page may do to the interpreter."""

import gc
import threading

import pytest

import qo


def test_nodes_keep_their_page():
    node, attribute = (lambda page: (page.first("b"), page.first("b").attributes[0]))(qo.parse("<p><b id=x>y</b>" * 9))
    view = qo.parse("<p>" + "é" * 99_999).data
    walk = qo.parse("<p>x<b>y").walk()
    edit = qo.parse("<p>x").edit().text("p", "z")
    cell = qo.parse("<table><tr><td>c").first("table").table().cell(0, 0)
    gc.collect()
    assert (node.text, node.parent.name, attribute.value) == ("y", "p", "x")
    assert bytes(view[-2:]) == "é".encode() and view.readonly
    assert [one.html for one in walk] == ["<p>x<b>y", "x", "<b>y", "y"]
    assert str(edit.apply()) == "<p>z" and cell.node.text == "c"


def test_depth_is_no_matter():
    page = qo.parse("<div>" * 200_000)
    last = page.node_at(200_000)
    assert len(last.ancestors()) == 200_000
    assert page.edit().text(last, "x").apply().source.endswith(b"<div>x")


def memory():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def work(source):
    page = qo.parse(source)
    for link in page.select("a"):
        link["href"], link.attributes, link.attrs, link.text, link.next, link.path
    for bad in ("a[", "p:nth-child(x)"):
        with pytest.raises(qo.SelectorError):
            page.select(bad)
    edit = page.edit().add_class("a", "k").html("p", "</p>")
    edit.apply(on_refused="skip").refused
    with pytest.raises(qo.EditRefused):
        edit.apply()
    page.first("table").table().cell(0, 0)
    page.first("form").form().urlencoded()


def test_nothing_leaks():
    links = "<a href=x>y</a>" * 50
    source = "<p>x</p><table><tr><td>c</table><form><input name=a></form>" + links + "<i>" + "z" * 100_000
    for _ in range(5):
        work(source)
    before = memory()
    for _ in range(40):
        work(source)
    assert memory() - before < 2_000_000  # a kept page would be 4 MB and more


def test_threads_use_one_page_and_one_edit():
    page = qo.parse("<p id=a>" + "<a href=x>y</a>" * 2_000)
    links = page.select("a")
    edit = page.edit()
    counts = []

    def use(number):
        for link in links[number::4]:
            edit.add_class(link, f"k{number}")
            if link.index % 400 == 0:
                edit.apply()
        counts.append((len(page.select("a")), links[number].position))

    threads = [threading.Thread(target=use, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(counts) == 4 and all(count == 2_000 for count, _ in counts)
    assert str(edit.apply()).count(' class="k') == 2_000


def test_other_threads_run_while_a_page_is_read():
    source = b"<p>x</p>" * 2_000_000
    done = threading.Event()
    seen = []

    def read():
        qo.parse(source)
        done.set()

    thread = threading.Thread(target=read)
    thread.start()
    while not done.wait(0.001):
        seen.append(None)
    thread.join()
    assert len(seen) > 5
