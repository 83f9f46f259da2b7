"""Calls of the library as the documents write them: SetFontSize(1); TextSaveSpool("3 €")."""

import ast
import ctypes
import re
from typing import Any

from nadrel.declarations import PRINTER_FUNCTIONS


def run(functions: Any, calls: str) -> list[int | None]:
    """Make the calls and give their results."""
    return [_run_one(functions, node) for node in ast.parse(calls).body]


def _run_one(functions: Any, node: ast.stmt) -> int | None:
    assert isinstance(node, ast.Expr) and isinstance(node.value, ast.Call), "a call is expected"
    call = node.value
    assert isinstance(call.func, ast.Name)
    types = PRINTER_FUNCTIONS[call.func.id][1]
    values = [ast.literal_eval(argument) for argument in call.args]
    assert len(values) == len(types), f"{call.func.id} takes {len(types)} arguments"
    result = getattr(functions, call.func.id)(*map(_converted, values, types))
    return result if isinstance(result, int) else None


def _converted(value: Any, kind: Any) -> Any:
    if isinstance(value, str) and kind is ctypes.c_char_p:
        return value.encode("latin-1")
    if isinstance(value, str) and kind in (ctypes.c_int32, ctypes.c_uint32, ctypes.c_uint8):
        return ord(value)  # 'M'
    return value


def bytes_of(text: str) -> bytes:
    """Hexadecimal bytes; 00×88 is 88 of them; "none" is none."""
    if text == "none":
        return b""
    return b"".join(_piece(word) for word in text.split())


def _piece(word: str) -> bytes:
    match = re.fullmatch(r"([0-9A-F]{2})(?:×(\d+))?", word)
    assert match, f"{word!r} is no byte in hexadecimal"
    return bytes.fromhex(match[1]) * int(match[2] or 1)
