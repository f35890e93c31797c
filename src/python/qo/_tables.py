"""Tables as rows and columns of text."""

from typing import NamedTuple, Optional

from . import _qo
from ._markup import escape


class Cell(NamedTuple):
    node: Optional[_qo.Node]
    text: str
    row: int
    column: int
    rows: int
    columns: int


class Table:
    __slots__ = ("_grid", "node", "rows")

    def __init__(self, node):
        self._grid = _qo.read_table(node)
        self.node = node
        self.rows = self._grid.rows()

    @property
    def header_rows(self):
        return self._grid.header_rows()

    def cell(self, row, column):
        if row < 0 or column < 0:
            raise IndexError("the table has no such place")
        return Cell(*self._grid.cell(row, column))

    def records(self):
        head = self.header_rows
        if head == 0:
            raise ValueError("no row of the table names its columns")
        names = self.rows[head - 1]
        twice = next((name for name in names if names.count(name) > 1), None)
        if twice is not None:
            raise ValueError(f"two columns of the table are called {twice!r}")
        return [dict(zip(names, row)) for row in self.rows[head:]]

    def __repr__(self):
        columns = len(self.rows[0]) if self.rows else 0
        return f"<qo.Table {len(self.rows)} rows, {columns} columns>"

    def _repr_html_(self):
        lines = []
        for number, row in enumerate(self.rows):
            name = "th" if number < self.header_rows else "td"
            lines.append("<tr>" + "".join(f"<{name}>{escape(text)}</{name}>" for text in row) + "</tr>")
        return "<table>\n" + "\n".join(lines) + "\n</table>"
