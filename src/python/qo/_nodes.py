"""What nodes and pages can do that is written in Python."""

import html
from collections.abc import Mapping

from . import _qo
from ._edits import Edit
from ._forms import Form
from ._reading import encoded, node_of, read_again
from ._tables import Table

Node, Page, Selector, Attribute = _qo.Node, _qo.Page, _qo.Selector, _qo.Attribute


class Attrs(Mapping):
    """The attributes of a node by their names, which compare without case."""

    __slots__ = ("_node",)

    def __init__(self, node):
        self._node = node

    def __getitem__(self, name):
        return self._node[name]

    def __contains__(self, name):
        return isinstance(name, str) and name in self._node

    def __iter__(self):
        seen = set()
        for attribute in _qo.attributes_of(self._node):
            if attribute.name.lower() not in seen:
                seen.add(attribute.name.lower())
                yield attribute.name

    def __len__(self):
        return sum(1 for _ in self)

    def __repr__(self):
        return repr(dict(self))


def _shortened(text, most=60):
    line = " ".join(text[:4 * most].split())
    return line if len(line) <= most else line[:most - 1] + "…"


def _is_plain(name):
    rest = name[1:] if name.startswith("-") else name
    return rest != "" and not rest[0].isdigit() and all(
        c in "_-" or c.isalnum() or ord(c) >= 0x80 for c in name)


def _step(element, siblings):
    """The step of a selector that finds the element among its siblings."""
    name = element.name.lower()
    if not _is_plain(name):
        return f":nth-child({siblings.index(element) + 1})"
    same = [sibling for sibling in siblings if sibling.name.lower() == name]
    return name if len(same) == 1 else f"{name}:nth-of-type({same.index(element) + 1})"


def _css_path(element):
    steps = []
    while element.kind == "element":
        own_id = element.get("id", "")
        if own_id.isascii() and _is_plain(own_id) and element.page.select("#" + own_id, 2) == [element]:
            steps.append("#" + own_id)
            break
        parent = element.parent
        step = _step(element, [child for child in parent.children if child.kind == "element"])
        steps.append(step if parent.kind == "element" else step + ":root")
        element = parent
    return " > ".join(reversed(steps))


def _node_repr(node):
    line, column = node.position
    return f"<qo.Node {node.kind} {line}:{column} {_shortened(node.html[:400])!r}>"


def _node_html(node):
    if node.kind == "element" and node.name.lower() == "table":
        return Table(node)._repr_html_()
    return f"<pre>{html.escape(node.html)}</pre>"


def _page_repr(page):
    where = "" if page.path is None else f" {page.path!r}"
    return f"<qo.Page{where} {page.dialect} {len(page.data)} bytes>"


def _in_own_encoding(page):
    return encoded(bytes(page), page.encoding)


Node.attributes = property(_qo.attributes_of)
Node.attrs = property(Attrs)
Node.path = property(_css_path)
Node.table = lambda node: Table(node)
Node.form = lambda node: Form(node)
Node.__repr__ = _node_repr
Node._repr_html_ = _node_html
Node.__reduce__ = lambda node: (node_of, (node.page, node.index))
Node.__copy__ = lambda node: node
Node.__deepcopy__ = lambda node, memo: node

Page.path = Page._path
Page.source = property(_in_own_encoding)
Page.edit = lambda page, code="refuse": Edit(page, code)
Page.__repr__ = _page_repr
Page.__reduce__ = lambda page: (read_again, (page.source, page.path, page.dialect, page.encoding))

Selector.__repr__ = lambda selector: f"qo.Selector({selector.text!r})"
Selector.__reduce__ = lambda selector: (Selector, (selector.text,))
Selector.__eq__ = lambda a, b: a.text == b.text if isinstance(b, Selector) else NotImplemented
Selector.__hash__ = lambda selector: hash(selector.text)
Attribute.__repr__ = lambda attribute: f"<qo.Attribute {attribute.name}={_shortened(attribute.value)!r}>"
