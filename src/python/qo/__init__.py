"""Pages and templates as their authors wrote them: read, search, change only what is named."""

from ._edits import Edit
from ._errors import EditRefused, Error, SelectorError
from ._forms import Form
from ._markup import Markup, escape
from ._nodes import Attribute, Node, Page, Selector
from ._reading import Pages, pages, parse, read
from ._results import Change, Result
from ._tables import Cell, Table

__all__ = [
    "Attribute", "Cell", "Change", "Edit", "EditRefused", "Error", "Form", "Markup", "Node", "Page", "Pages", "Result",
    "Selector", "SelectorError", "Table", "escape", "pages", "parse", "read"]

for _public in (Attribute, Cell, Change, Edit, EditRefused, Error, Form, Markup, Node, Page, Pages, Result, Selector,
                SelectorError, Table, escape, pages, parse, read):
    _public.__module__ = "qo"
