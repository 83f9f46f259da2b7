"""What the groups of functions have in common: calling, and reading results."""

from typing import Any

from .errors import NOT_CONNECTED, PrinterError, check
from .library import Library


class Calls:
    """Calls the library on behalf of an open printer."""

    _library: Library
    _open = False

    @property
    def functions(self) -> Any:
        """Every function of the library by its C name, with nothing checked or converted but the types."""
        return self._library.functions

    def _do(self, function: str, *arguments: object) -> None:
        self._call(function, arguments)

    def _result(self, function: str, *arguments: object) -> int:
        return check(function, self._call(function, arguments))

    def _call(self, function: str, arguments: tuple[object, ...]) -> Any:
        if not self._open:
            raise PrinterError(function, NOT_CONNECTED, "the printer is closed")
        return getattr(self.functions, function)(*arguments)
