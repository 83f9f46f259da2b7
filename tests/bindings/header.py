"""Reads the functions out of the library's C headers."""

import re
from dataclasses import dataclass
from pathlib import Path

API = Path(__file__).resolve().parents[2] / "api"


@dataclass(frozen=True)
class Parameter:
    type: str
    name: str


@dataclass(frozen=True)
class Function:
    name: str
    result: str
    parameters: tuple[Parameter, ...]


def functions(header: str) -> dict[str, Function]:
    """The functions that a header in api/ declares, in its order."""
    text = _code(header)
    found = re.findall(r"\bNADREL_API\s+([^;()]+?)(\w+)\s*\(([^()]*)\)\s*;", text)
    read = [_function(result, name, parameters) for result, name, parameters in found]
    declared = len(re.findall(r"^NADREL_API ", text, re.MULTILINE))
    assert len(read) == declared, f"{declared - len(read)} declarations were not read"
    return {function.name: function for function in read}


def structure_fields(header: str, name: str) -> list[Parameter]:
    """The fields of a structure that a header declares."""
    body = re.search(rf"struct {name}\s*{{(.*?)}}", _code(header), re.DOTALL)
    assert body, f"{header} declares no {name}"
    return [_parameter(field) for field in body[1].split(";") if field.strip()]


def definitions(header: str, name: str) -> list[str]:
    """What a header makes of the name of a type or a macro, on one system after the other."""
    text = _code(header)
    defined = re.findall(rf"^#define {name}\b(.*)$|^typedef ([^;]*\b{name}\b[^;]*);", text, re.MULTILINE)
    assert defined, f"{header} does not define {name}"
    return [" ".join((macro or alias).split()) for macro, alias in defined]


def exported(listing: str) -> list[str]:
    """The names in a list of exported names."""
    return (API / listing).read_text().split()


def _code(header: str) -> str:
    """A header without its comments."""
    return re.sub(r"/\*.*?\*/", " ", (API / header).read_text(), flags=re.DOTALL)


def _function(result: str, name: str, parameters: str) -> Function:
    listed = [] if parameters.strip() == "void" else parameters.split(",")
    result = _tidy(result.replace("NADREL_CALL", " "))
    return Function(name, result, tuple(_parameter(parameter) for parameter in listed))


def _parameter(text: str) -> Parameter:
    match = re.fullmatch(r"(.*?)(\w+)", text.strip(), re.DOTALL)
    assert match, f"{text} is no parameter"
    return Parameter(_tidy(match[1]), match[2])


def _tidy(text: str) -> str:
    return " ".join(text.replace("*", " * ").split())
