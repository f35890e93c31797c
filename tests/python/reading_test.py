"""Files and folders."""

import os

import pytest

import qo



@pytest.fixture
def site(tmp_path):
    for path in ["b.html", "a.php", "c.txt", "sub/d.vue", "sub/e.html", ".hid/f.html", "node_modules/g.html", "html"]:
        (tmp_path / path).parent.mkdir(exist_ok=True)
        (tmp_path / path).write_text(f"<p>{path}</p>")
    (tmp_path / "link.html").symlink_to(tmp_path / "b.html")
    return tmp_path


@pytest.mark.parametrize("choice, expected", [
    ({}, ["a.php", "b.html", "sub/d.vue", "sub/e.html"]),
    ({"include": "*.html"}, ["b.html", "sub/e.html"]),
    ({"include": ["*.txt", "sub/*.vue"]}, ["c.txt", "sub/d.vue"]),
    ({"include": "**/b.html"}, ["b.html"]),
    ({"exclude": "sub"}, ["a.php", "b.html"]),
    ({"exclude": ["*.vue", "a.*"]}, ["b.html", "sub/e.html"]),
])
def test_pages_of_a_folder(site, choice, expected):
    pages = qo.pages(site, **choice)
    assert len(pages) == len(expected)
    assert [page.first("p").text for page in pages] == expected
    assert [os.path.relpath(page.path, site) for page in pages] == expected


def test_a_file_that_cannot_be_read(site):
    (site / "b.html").write_bytes(b"\xff\xfe<\0")
    failed = []
    pages = qo.pages(site, on_error=lambda path, error: failed.append((os.path.basename(path), type(error))))
    assert len(list(pages)) == 3 and failed == [("b.html", qo.Error)]
    with pytest.raises(qo.Error):
        list(qo.pages(site))
    with pytest.raises(FileNotFoundError):
        qo.pages(site / "none")
    with pytest.raises(FileNotFoundError):
        qo.read(site / "none")


@pytest.mark.parametrize("source", ["<p>é", "<p>é".encode(), bytearray(b"<p>\xc3\xa9"), memoryview(b"<p>\xc3\xa9"),
                                    memoryview(b"< p > \xc3 \xa9 ")[::2], qo.parse("<p>é").data])
def test_what_can_be_read(source):
    assert qo.parse(source).source == b"<p>\xc3\xa9"


def test_dialects():
    source = "{{ '<b>' }}"
    assert [len(qo.parse(source, dialect=name).select("b")) for name in (None, "html", "plain")] == [0, 0, 1]


def test_files_are_read_by_the_dialect_of_their_name(tmp_path):
    (tmp_path / "a.svelte").write_text("<A b={c > d}/><p>e</p>")
    (tmp_path / "a.txt").write_text("<p>")
    pages = list(qo.pages(tmp_path))
    assert [(page.dialect, [node.text for node in page.select("p")]) for page in pages] == [("svelte", ["e"])]
    assert qo.parse("<?xml version='1.0'?><p/>").dialect == "xhtml"
