"""What came of an edit."""

import difflib
import io
import os
import tempfile
from typing import NamedTuple, Tuple

from . import _qo
from ._errors import EditRefused
from ._reading import encoded


class Change(NamedTuple):
    old: Tuple[int, int]
    new: Tuple[int, int]
    node: _qo.Node


def _lines(page):
    return list(io.StringIO(bytes(page).decode("utf-8", "surrogateescape"), newline="\n"))


def _diff_lines(lines):
    """Lines of a difference, each with its end; the last line of a page may have none."""
    for line in lines:
        yield line if line.endswith("\n") else line + "\n\\ No newline at end of file\n"


def _write_whole(path, data):
    """The file has the old bytes or the new ones, whatever happens in between."""
    path = os.path.realpath(path)
    handle, beside = tempfile.mkstemp(prefix=".qo-", dir=os.path.dirname(path))
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(data)
            file.flush()
            os.fsync(file.fileno())
        os.chmod(beside, os.stat(path).st_mode & 0o7777 if os.path.exists(path) else 0o666 & ~_umask())
        os.replace(beside, path)
    except BaseException:
        os.unlink(beside)
        raise


def _umask():
    with open("/proc/self/status", encoding="ascii") as file:
        return next(int(line.split()[1], 8) for line in file if line.startswith("Umask:"))


def _source_of(page):
    try:
        return encoded(bytes(page), page.encoding)
    except UnicodeEncodeError as error:
        raise EditRefused(f"{page.encoding} has no character {error.object[error.start]!r}") from None


class Result:
    def __init__(self, before, applied):
        self._before = before
        self._applied = applied
        self.page = applied.page
        self.source = _source_of(self.page)

    def __str__(self):
        return bytes(self.page).decode("utf-8", "surrogateescape")

    def __bool__(self):
        return self._applied.is_changed

    @property
    def changes(self):
        return [Change(*change) for change in self._applied.changes()]

    @property
    def refused(self):
        return self._applied.refused()

    def diff(self):
        name = "page" if self._before.path is None else self._before.path
        return "".join(_diff_lines(difflib.unified_diff(_lines(self._before), _lines(self.page), name, name)))

    def write(self, path=None):
        if path is not None:
            return _write_whole(os.fsdecode(path), self.source)
        path = self._before.path
        if path is None:
            raise ValueError("the page was read from no file; write(path) names one")
        with open(path, "rb") as file:
            if file.read() != self._before.source:
                raise ValueError(f"{path} has changed since it was read")
        if self:
            _write_whole(path, self.source)

    def __repr__(self):
        return f"<qo.Result of {self._before!r}: {len(self.changes)} changes, {len(self.refused)} refused>"
