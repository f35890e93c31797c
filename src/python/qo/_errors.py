"""What ends an operation."""


class Error(ValueError):
    def __init__(self, message, offset=None, line=None, column=None):
        super().__init__(message)
        self.offset = offset
        self.line = line
        self.column = column


class SelectorError(Error):
    shown = ""


class EditRefused(Error):
    node = None
