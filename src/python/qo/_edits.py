"""Changes of a page."""

from . import _qo
from ._results import Result

_CODE = {"refuse": False, "keep": True}
_ON_REFUSED = {"raise": False, "skip": True}


def _choice(choices, value, what):
    try:
        return choices[value]
    except (KeyError, TypeError):
        raise ValueError(f"{what} is one of {', '.join(map(repr, choices))}, not {value!r}") from None


def _attribute_part(name, value):
    """How an attribute gets a value: True is none at all, None and False take the attribute away."""
    if value is None or value is False:
        return ("remove_attribute", name, "")
    if value is True:
        return ("set_bare_attribute", name, "")
    return ("set_attribute", name, value)


class Edit:
    def __init__(self, page, code="refuse"):
        self._page = page
        self._log = _qo.edit_log(page, _choice(_CODE, code, "code"))
        self.result = None

    def _nodes(self, target):
        if isinstance(target, (str, _qo.Selector)):
            return self._page.select(target)
        if isinstance(target, _qo.Node):
            return [target]
        return list(target)

    def _add(self, target, *parts):
        for _, name, value in parts:
            if not isinstance(name, str) or not isinstance(value, str):
                raise TypeError("names, texts and markup are str")
        self._log.add(self._nodes(target), list(parts))
        return self

    def set(self, target, attributes):
        return self._add(target, *(_attribute_part(name, value) for name, value in attributes.items()))

    def attr(self, target, name, value):
        return self._add(target, _attribute_part(name, value))

    def add_class(self, target, *names):
        return self._add(target, *(("add_class", "", name) for name in names))

    def remove_class(self, target, *names):
        return self._add(target, *(("remove_class", "", name) for name in names))

    def text(self, target, text):
        return self._add(target, ("set_text", "", text))

    def html(self, target, markup):
        return self._add(target, ("set_html", "", markup))

    def prepend(self, target, markup):
        return self._add(target, ("prepend", "", markup))

    def append(self, target, markup):
        return self._add(target, ("append", "", markup))

    def before(self, target, markup):
        return self._add(target, ("insert_before", "", markup))

    def after(self, target, markup):
        return self._add(target, ("insert_after", "", markup))

    def replace(self, target, markup):
        return self._add(target, ("replace", "", markup))

    def wrap(self, target, markup):
        return self._add(target, ("wrap", "", markup))

    def unwrap(self, target):
        return self._add(target, ("unwrap", "", ""))

    def rename(self, target, name):
        return self._add(target, ("rename", name, ""))

    def remove(self, target):
        return self._add(target, ("remove", "", ""))

    def sub_text(self, target, pattern, replacement):
        self._log.substitute(self._nodes(target), None, pattern, replacement)
        return self

    def sub_attr(self, target, name, pattern, replacement):
        self._log.substitute(self._nodes(target), name, pattern, replacement)
        return self

    def apply(self, on_refused="raise"):
        self.result = Result(self._page, self._log.apply(_choice(_ON_REFUSED, on_refused, "on_refused")))
        return self.result

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        if kind is None:
            self.apply()

    def __repr__(self):
        return f"<qo.Edit of {self._page!r}>"
