"""From text, files and folders to pages."""

import codecs
import fnmatch
import os

from . import _qo

# What the files of all dialects end in, after the last dot.
ENDINGS = frozenset(" ".join(_qo.endings()).split())


def _as_utf8(source, encoding):
    """The bytes as UTF-8; those of a UTF-8 page as they are, whatever they hold."""
    if encoding == "utf-8":
        return source
    text = source.decode(encoding)
    if text.encode(encoding) != source:
        raise ValueError(f"the page would not be the same in {encoding} again")
    return text.encode("utf-8")


def encoded(utf8, encoding):
    """UTF-8 in the encoding of a page."""
    return utf8 if encoding == "utf-8" else utf8.decode("utf-8").encode(encoding)


def _make(source, path, dialect, encoding):
    encoding = codecs.lookup("utf-8" if encoding is None else encoding).name
    if isinstance(source, str):
        errors = "surrogateescape" if encoding == "utf-8" else "strict"
        source = source.encode(encoding, errors)
    elif not isinstance(source, bytes):
        source = bytes(memoryview(source))
    utf8 = _as_utf8(source, encoding)
    if dialect is None:
        dialect = _qo.dialect_of(path or "", utf8)
    return _qo.read(utf8, path, dialect, encoding)


def parse(source, dialect=None, encoding=None):
    return _make(source, None, dialect, encoding)


def read(path, dialect=None, encoding=None):
    path = os.fsdecode(path)
    with open(path, "rb") as file:
        return _make(file.read(), path, dialect, encoding)


def read_again(source, path, dialect, encoding):
    """What a page is pickled as."""
    return _make(source, path, dialect, encoding)


def node_of(page, index):
    """What a node is pickled as."""
    return page.node_at(index)


def _globs(value):
    return None if value is None else [value] if isinstance(value, str) else list(value)


def _matches(globs, name, below):
    for glob in globs:
        subject = below if "/" in glob else name
        if fnmatch.fnmatchcase(subject, glob):
            return True
        if glob.startswith("**/") and fnmatch.fnmatchcase(subject, glob[3:]):
            return True
    return False


def _is_wanted(name, below, include, exclude):
    if _matches(exclude, name, below):
        return False
    if include is not None:
        return _matches(include, name, below)
    return name.rpartition(".")[2].lower() in ENDINGS and "." in name


def _fail(error):
    raise error


def _find(root, include, exclude):
    for folder, folders, names in os.walk(root, onerror=_fail):
        below = os.path.relpath(folder, root).replace(os.sep, "/")
        prefix = "" if below == "." else below + "/"
        folders[:] = sorted(name for name in folders
                            if not name.startswith(".") and name != "node_modules"
                            and not os.path.islink(os.path.join(folder, name))
                            and not _matches(exclude, name, prefix + name))
        for name in sorted(names):
            path = os.path.join(folder, name)
            if _is_wanted(name, prefix + name, include, exclude) and os.path.isfile(path) and not os.path.islink(path):
                yield path


class Pages:
    def __init__(self, root, include=None, exclude=None, dialect=None, encoding=None, on_error=None):
        self._options = {"dialect": dialect, "encoding": encoding}
        self._on_error = on_error
        self.paths = list(_find(os.fsdecode(root), _globs(include), _globs(exclude) or []))

    def __len__(self):
        return len(self.paths)

    def __iter__(self):
        for path in self.paths:
            try:
                page = read(path, **self._options)
            except (OSError, ValueError) as error:
                if self._on_error is None:
                    raise
                self._on_error(path, error)
                continue
            yield page

    def __repr__(self):
        return f"<qo.Pages: {len(self)} files>"


def pages(root, include=None, exclude=None, dialect=None, encoding=None, on_error=None):
    return Pages(root, include, exclude, dialect, encoding, on_error)
