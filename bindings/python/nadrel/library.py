"""Finding and loading the shared library."""

import ctypes
import ctypes.util
import os
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from .declarations import HOST_FUNCTIONS, PRINTER_FUNCTIONS, Declaration
from .notifications import Dispatcher

ENVIRONMENT_VARIABLE = "NADREL_LIBRARY"
_NAMES = ("NADRELPRINTER.dll",) if os.name == "nt" else ("libnadrelprinter.so.1", "libnadrelprinter.so")


class Library:
    """The loaded library.

    functions: every exported function by its C name, with its types declared and nothing checked.
    dispatcher: who takes the notifications; None on Windows, where they are window messages.
    """

    def __init__(self, functions: ctypes.CDLL) -> None:
        self.functions: Any = functions
        _declare(functions, PRINTER_FUNCTIONS)
        self.dispatcher: Dispatcher | None = None
        if os.name != "nt":
            _declare(functions, HOST_FUNCTIONS)
            self.dispatcher = Dispatcher(functions)


# The state behind the functions is one for the process, so each library is wrapped once and kept.
_loaded: dict[int, Library] = {}


def load(path: str | os.PathLike[str] | None = None) -> Library:
    """Load the library: from the path, else from the file that the environment variable NADREL_LIBRARY
    names, else by its name from where the system looks for libraries.

    Raises OSError when it is not found or is not this library.
    """
    functions = _open(path or os.environ.get(ENVIRONMENT_VARIABLE))
    handle = functions._handle
    if handle not in _loaded:
        _loaded[handle] = Library(functions)
    return _loaded[handle]


def _open(path: str | os.PathLike[str] | None) -> ctypes.CDLL:
    if path:
        return ctypes.CDLL(str(Path(path).resolve()))
    reasons = []
    for name in _candidates():
        try:
            return ctypes.CDLL(name)
        except OSError as error:
            reasons.append(str(error))
    raise OSError(
        f"the NADREL printer library is not installed where the system looks for libraries; "
        f"set {ENVIRONMENT_VARIABLE} to its file ({'; '.join(reasons)})"
    )


def _candidates() -> Iterator[str]:
    yield from _NAMES
    found = ctypes.util.find_library("nadrelprinter")
    if found:
        yield found


def _declare(functions: ctypes.CDLL, declarations: dict[str, Declaration]) -> None:
    for name, (result, arguments) in declarations.items():
        try:
            function = getattr(functions, name)
        except AttributeError:
            raise OSError(f"{functions._name} is another library: it has no function {name}") from None
        function.restype = result
        function.argtypes = arguments
