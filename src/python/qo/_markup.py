"""Markup as a type of its own, so that text is not taken for it."""

import html
import string


class _EscapingFormatter(string.Formatter):
    def format_field(self, value, format_spec):
        if format_spec == "" and hasattr(value, "__html__"):
            return str(value.__html__())
        return html.escape(super().format_field(value, format_spec))

    def convert_field(self, value, conversion):
        return value if conversion is None else super().convert_field(value, conversion)


class Markup(str):
    __slots__ = ()

    def __html__(self):
        return self

    def format(self, *args, **kwargs):
        return Markup(_EscapingFormatter().vformat(str(self), args, kwargs))

    def format_map(self, mapping):
        return Markup(_EscapingFormatter().vformat(str(self), (), mapping))

    def __add__(self, other):
        return Markup("".join((self, escape(other)))) if isinstance(other, str) else NotImplemented

    def __radd__(self, other):
        return Markup("".join((escape(other), self))) if isinstance(other, str) else NotImplemented

    def join(self, parts):
        return Markup(super().join(escape(part) for part in parts))

    def __repr__(self):
        return f"Markup({str(self)!r})"


def escape(text):
    if hasattr(text, "__html__"):
        return Markup(text.__html__())
    if not isinstance(text, str):
        raise TypeError(f"a str is escaped, not a {type(text).__name__}")
    return Markup(html.escape(text))
