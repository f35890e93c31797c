"""Pages and templates as their authors wrote them: read, search, change only what is named.

A page is read by its own tags, template code included, and an edit changes the bytes that it names and no others. What
cannot be exact is refused. Offsets count bytes, from 0; lines and columns count from 1, columns in bytes.

Pages and nodes never change, and may be used by several threads at once. Python's lock is released while a page is
read, searched, edited and freed.
"""

from os import PathLike
from types import TracebackType
from typing import (Callable, Dict, Iterable, Iterator, List, Literal, Mapping, NamedTuple, Optional, Tuple, Type,
                    TypeVar, Union, overload)

_Default = TypeVar("_Default")
_Buffer = Union[bytes, bytearray, memoryview]
_Path = Union[str, bytes, "PathLike[str]", "PathLike[bytes]"]
_Selector = Union[str, "Selector"]
_Target = Union[str, "Selector", "Node", Iterable["Node"]]
_Value = Union[str, bool, None]
_Globs = Union[str, Iterable[str], None]
_Form = Literal["decoded", "written", "readable"]
_Code = Literal["refuse", "keep"]

__all__ = [
    "Attribute", "Cell", "Change", "Edit", "EditRefused", "Error", "Form", "Markup", "Node", "Page", "Pages", "Result",
    "Selector", "SelectorError", "Table", "escape", "pages", "parse", "read"]

class Error(ValueError):
    """What a page, a selector or an edit is refused with. `offset`, `line` and `column` are None where there is no
    place to tell of."""

    offset: Optional[int]
    line: Optional[int]
    column: Optional[int]
    def __init__(self, message: str, offset: Optional[int] = None, line: Optional[int] = None,
                 column: Optional[int] = None) -> None: ...

class SelectorError(Error):
    """A text that is no selector. `offset` is one of the selector; `shown` has its line, and a caret under the
    place."""

    shown: str

class EditRefused(Error):
    """An edit that would not be just what was asked. `node` is the one whose operations are refused."""

    node: Optional[Node]

class Markup(str):
    """Text that is markup. `format`, `join` and `+` escape what they put in, unless that is markup itself."""

    def __html__(self) -> Markup: ...
    def format(self, *args: object, **kwargs: object) -> Markup: ...
    def format_map(self, mapping: Mapping[str, object]) -> Markup: ...  # type: ignore[override]
    def join(self, parts: Iterable[str]) -> Markup: ...
    def __add__(self, other: str) -> Markup: ...
    def __radd__(self, other: str) -> Markup: ...

def escape(text: str) -> Markup:
    """Text as markup, good between tags and in quotes. Markup stays as it is."""

class Selector:
    """A CSS selector, read once. Throws SelectorError. It is pickled as its text."""

    def __init__(self, text: str) -> None: ...
    @property
    def text(self) -> str: ...
    def __hash__(self) -> int: ...

class Attribute:
    """An attribute as it is written."""

    @property
    def name(self) -> str: ...
    @property
    def value(self) -> str:
        """Decoded; empty for one without a value."""
    @property
    def written(self) -> str:
        """The value as it is in the source."""
    @property
    def has_value(self) -> bool:
        """Whether there is a "="."""
    @property
    def quote(self) -> str:
        """Around the value; empty where there is none."""
    @property
    def span(self) -> Tuple[int, int]: ...
    @property
    def name_span(self) -> Tuple[int, int]: ...
    @property
    def value_span(self) -> Tuple[int, int]:
        """Without the quotes."""

class Node:
    """A node of a page, which it keeps. Nodes of one page compare as in the document."""

    @property
    def page(self) -> Page: ...
    @property
    def kind(self) -> Literal["document", "element", "text", "comment", "doctype", "cdata", "code"]:
        """"code" is <?...?> and <%...%> where they are tags of their own."""
    @property
    def name(self) -> str:
        """As written; empty for what has none."""
    @property
    def index(self) -> int:
        """Its number in the page, in document order; the page is 0."""
    @property
    def attrs(self) -> Mapping[str, str]:
        """The decoded values by names, which compare without case; of several of one name, the first."""
    @property
    def attributes(self) -> List[Attribute]:
        """All that are written, in order."""
    def __getitem__(self, name: str) -> str:
        """The decoded value of an attribute. Throws KeyError."""
    @overload
    def get(self, name: str) -> Optional[str]: ...
    @overload
    def get(self, name: str, default: _Default) -> Union[str, _Default]:
        """The decoded value of an attribute, or the default."""
    def __contains__(self, name: str) -> bool: ...
    @property
    def text(self) -> str:
        """What is below, decoded, but for comments, scripts and styles; these have a text of their own."""
    def get_text(self, form: _Form = "decoded") -> str:
        """The text decoded, as it is written, or as a person reads it."""
    @property
    def html(self) -> str:
        """The source of the node."""
    @property
    def inner_html(self) -> str:
        """The source of its content."""
    @property
    def span(self) -> Tuple[int, int]:
        """Where it is in `page.data`."""
    @property
    def position(self) -> Tuple[int, int]:
        """The line and column of its begin."""
    @property
    def path(self) -> str:
        """A selector that finds this element alone; empty for what is no element. Takes time for the nodes above and
        beside it, and with ids for the page. Some sixty levels are too many for a selector."""
    @property
    def parent(self) -> Optional[Node]: ...
    @property
    def children(self) -> List[Node]: ...
    @property
    def next(self) -> Optional[Node]: ...
    @property
    def previous(self) -> Optional[Node]: ...
    def ancestors(self) -> List[Node]:
        """From the inside out, with the page last."""
    def walk(self) -> Iterator[Node]:
        """All nodes below, in document order."""
    def select(self, selector: _Selector, limit: int = ...) -> List[Node]:
        """What a selector finds below, in document order, not more than the first `limit`."""
    def first(self, selector: _Selector) -> Optional[Node]: ...
    def closest(self, selector: _Selector) -> Optional[Node]:
        """The node itself or the innermost one around it that matches."""
    def matches(self, selector: _Selector) -> bool: ...
    def table(self) -> Table:
        """The rows and columns of a table element."""
    def form(self) -> Form:
        """What is sent for a form element."""
    def _repr_html_(self) -> str: ...
    def __lt__(self, other: Node) -> bool: ...
    def __le__(self, other: Node) -> bool: ...
    def __gt__(self, other: Node) -> bool: ...
    def __ge__(self, other: Node) -> bool: ...
    def __hash__(self) -> int: ...

class Page(Node):
    """A page, which is its root node as well. It is pickled as its source and how it was read."""

    @property
    def source(self) -> bytes:
        """The page in its own encoding."""
    @property
    def data(self) -> memoryview:
        """What was read, without a copy: the source, in UTF-8."""
    @property
    def path(self) -> Optional[str]:  # type: ignore[override]
        """The file that it was read from."""
    @property
    def dialect(self) -> str: ...
    @property
    def encoding(self) -> str: ...
    def node_at(self, index: int) -> Node:
        """The node of that number. Throws IndexError."""
    def edit(self, code: _Code = "refuse") -> Edit:
        """Begins an edit. Template code in plain text is refused, unless it is to be kept as code."""
    def __buffer__(self, flags: int, /) -> memoryview: ...

def parse(source: Union[str, _Buffer], dialect: Optional[str] = None, encoding: Optional[str] = None) -> Page:
    """Reads a page, whatever it holds. The dialect is "html", with template code, or "plain". UTF-8 is read as it is,
    bytes that are none included, which strings have as lone surrogates. A page in another encoding must be the same
    when it is written in it again."""

def read(path: _Path, dialect: Optional[str] = None, encoding: Optional[str] = None) -> Page:
    """Reads a file as parse() does."""

class Pages:
    """The pages below a folder, found when this is made, each read when its turn comes."""

    paths: List[str]
    def __init__(self, root: _Path, include: _Globs = None, exclude: _Globs = None, dialect: Optional[str] = None,
                 encoding: Optional[str] = None,
                 on_error: Optional[Callable[[str, Exception], object]] = None) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Page]: ...

def pages(root: _Path, include: _Globs = None, exclude: _Globs = None, dialect: Optional[str] = None,
          encoding: Optional[str] = None, on_error: Optional[Callable[[str, Exception], object]] = None) -> Pages:
    """The pages and templates below a folder, in the order of their names. Hidden folders, node_modules and links are
    left out. Globs are of names or, with a "/", of paths below the folder. `on_error` is called with the path and what
    was thrown for a file that cannot be read; without it, that is thrown."""

class Change(NamedTuple):
    """A stretch of the page and what it became, for the operations on `node`."""

    old: Tuple[int, int]
    new: Tuple[int, int]
    node: Node

class Edit:
    """Operations on nodes of one page, which are those that a selector finds, a node, or several. They are carried out
    in their order, and what is done to a node that goes away with another is no longer seen.

    `text`, `attr` and `set` take plain text and escape it; `html`, `prepend`, `append`, `before`, `after`, `replace`
    and `wrap` take markup. Each throws Error for what fits no node, and nothing was then added. As a context, it
    applies itself at the end."""

    result: Optional[Result]
    def __init__(self, page: Page, code: _Code = "refuse") -> None: ...
    def set(self, target: _Target, attributes: Mapping[str, _Value]) -> Edit:
        """Sets several attributes, as attr() does."""
    def attr(self, target: _Target, name: str, value: _Value) -> Edit:
        """Sets an attribute; True is one without a value, None and False take it away."""
    def add_class(self, target: _Target, *names: str) -> Edit: ...
    def remove_class(self, target: _Target, *names: str) -> Edit: ...
    def text(self, target: _Target, text: str) -> Edit: ...
    def html(self, target: _Target, markup: str) -> Edit: ...
    def prepend(self, target: _Target, markup: str) -> Edit: ...
    def append(self, target: _Target, markup: str) -> Edit: ...
    def before(self, target: _Target, markup: str) -> Edit: ...
    def after(self, target: _Target, markup: str) -> Edit: ...
    def replace(self, target: _Target, markup: str) -> Edit: ...
    def wrap(self, target: _Target, markup: str) -> Edit:
        """Puts the node into the innermost first element of the markup."""
    def unwrap(self, target: _Target) -> Edit:
        """Takes the tags away and leaves the content."""
    def rename(self, target: _Target, name: str) -> Edit: ...
    def remove(self, target: _Target) -> Edit: ...
    def sub_text(self, target: _Target, pattern: str, replacement: str) -> Edit:
        """Substitutes in texts. The pattern is Perl-compatible; "$1" is a group, "$0" the whole match."""
    def sub_attr(self, target: _Target, name: str, pattern: str, replacement: str) -> Edit: ...
    def apply(self, on_refused: Literal["raise", "skip"] = "raise") -> Result:
        """Makes the new page, reads it, and compares it with what was asked. Throws EditRefused, or leaves out all
        operations on the nodes that are refused: each of these takes the time of one more reading."""
    def __enter__(self) -> Edit: ...
    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None: ...

class Result:
    """The page that an edit made. It is true when anything changed."""

    page: Page
    source: bytes
    @property
    def changes(self) -> List[Change]: ...
    @property
    def refused(self) -> List[EditRefused]:
        """What apply("skip") left out."""
    def __bool__(self) -> bool: ...
    def diff(self) -> str:
        """A unified diff, for people: on large pages, it takes far longer than the edit."""
    def write(self, path: Optional[_Path] = None) -> None:
        """Writes the page to its file, or to another one, as a whole or not at all. Throws ValueError when the file
        has changed since it was read."""

class Cell(NamedTuple):
    """A cell, and the places that it fills. Without a node, there is no cell."""

    node: Optional[Node]
    text: str
    row: int
    column: int
    rows: int
    columns: int

class Table:
    """A table as a browser forms it: a cell fills all places that it spans."""

    node: Node
    rows: List[List[str]]
    def __init__(self, node: Node) -> None: ...
    @property
    def header_rows(self) -> int:
        """How many rows at the top name the columns."""
    def cell(self, row: int, column: int) -> Cell:
        """Throws IndexError for a place that is not in the table."""
    def records(self) -> List[Dict[str, str]]:
        """The other rows, by the names in the last of the header rows. Throws ValueError where there is none, or where
        two columns have one name."""
    def _repr_html_(self) -> str: ...

class Form:
    """What a browser sends for a form, before anyone types."""

    node: Node
    def __init__(self, node: Node) -> None: ...
    def data(self, submitter: Optional[str] = None) -> List[Tuple[str, str]]:
        """Names and values in order. `submitter` is the name of the button that is pressed, or NAME=VALUE."""
    def urlencoded(self, submitter: Optional[str] = None) -> str: ...
    def __setitem__(self, name: str, values: Union[str, Iterable[str]]) -> None:
        """What the controls of that name are to send, after edit()."""
    def edit(self, code: _Code = "refuse") -> Edit:
        """An edit that makes the form send what was set. Throws Error where that cannot be exact."""
