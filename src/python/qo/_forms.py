"""Forms: what a browser sends, and what makes it send something else."""

from . import _qo
from ._edits import Edit


class Form:
    __slots__ = ("_controls", "_wanted", "node")

    def __init__(self, node):
        self._controls = _qo.read_forms(node.page)
        self._wanted = {}
        self.node = node

    def data(self, submitter=None):
        return self._controls.data(self.node, submitter)

    def urlencoded(self, submitter=None):
        return self._controls.urlencoded(self.node, submitter)

    def __setitem__(self, name, values):
        values = [values] if isinstance(values, str) else list(values)
        if not isinstance(name, str) or not all(isinstance(value, str) for value in values):
            raise TypeError("a field has a name and one or several values, all of them str")
        self._wanted[name] = values

    def edit(self, code="refuse"):
        edit = Edit(self.node.page, code)
        self._controls.fill(self.node, list(self._wanted.items()), edit._log)
        return edit

    def __repr__(self):
        return f"<qo.Form {len(self.data())} entries>"
