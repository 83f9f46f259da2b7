"""Which lines and pieces of code in the documents are command lines, and which of them are not run."""

import os
import re
from collections.abc import Iterator
from pathlib import Path

import markdown

STEP = "a step of .ci/run"

# Command lines that no test runs, each with the reason.
NOT_RUN = {
    ".ci/run": "is all the steps: installs packages, and runs this test several times",
    "./dev coverage": "builds once more, with counters, and runs most tests",
    "./dev demo": STEP,
    "./dev format": "changes the sources; ./dev format-check, a step of .ci/run, says whether it would",
    "./dev package": STEP,
    "./dev package linux-armhf": STEP,
    "./dev package windows": STEP,
    "./dev sizes": "builds for five machines; the tests named HasTheSizeInTheTable run its script on each",
    "./dev test": STEP,
    "./dev windows": STEP,
    "cmake --build --preset release": "is what ./dev build runs",
    "cmake --preset release": "is what ./dev build runs",
    "sudo apt install ./build/release/packages/*.deb": "changes the machine; Packages. installs into a root of its own",
    "sudo usermod -aG dialout $USER": "needs root and changes the user's groups",
}

_PROGRAMS = {
    "./dev",
    "cc",
    "cmake",
    "for",
    "ls",
    "nadrel",
    "nadrel-printer",
    "pkg-config",
    "printf",
    "python3",
    "sudo",
}
_CALL = re.compile(r"[A-Za-z_]\w*\(")

# Indented blocks that are neither command lines nor jobs, by their first line.
_TEXT = {
    "00 C0 44 31 <length: four ASCII digits> <payload> <c0> <c1> C1",
    "00 C0 51 C1",
}
_LANGUAGES = {"sh": "commands", "c": "c", "csharp": "csharp", "python": "python", "text": "text"}

# Code within the text that looks like a command line and is none.
_LIKE_A_COMMAND_LINE = re.compile(r"[a-z.][\w./-]* \S")
_WORDS = {
    "answered no",
    "answered yes",
    "return done || Fail(reason)",
    "send 30 31",
    "serial /dev/pts/3",
    "tcp 127.0.0.1:9100",
    "xL xH",
    "zeros 1B 1C 2B 01 00 nL nH commands",
}


def kind_of(block: markdown.Block) -> str:
    """What a block is: commands, job, c, csharp, python or text."""
    if block.language:
        return _LANGUAGES[block.language]
    first = next(line for line in block.lines if not line.startswith("#"))
    if first.split()[0] in _PROGRAMS:
        return "commands"
    if _CALL.match(first):
        return "job"
    if first in _TEXT:
        return "text"
    raise AssertionError(f"{block.place}: {first!r} is of no known kind; give it a fence with a language")


def command_lines(block: markdown.Block) -> Iterator[str]:
    """The command lines of a block, without comments."""
    for line in "\n".join(block.lines).replace("\\\n", " ").splitlines():
        line = re.sub(r"(^|\s+)#\s.*", "", line).strip()
        if line:
            yield line


def inline_command_lines(document: Path) -> list[str]:
    """The command lines within the text of a document, each once."""
    found = {}
    for line, code in markdown.code_spans(document):
        if _is_command_line(code):
            found[code] = line
        elif _LIKE_A_COMMAND_LINE.match(code) and code not in _WORDS:
            raise AssertionError(f"{document.name}:{line}: is {code!r} a command line?")
    return list(found)


def _is_command_line(code: str) -> bool:
    program, *arguments = code.split()
    if "/" in program and os.access(markdown.ROOT / program, os.X_OK) and (markdown.ROOT / program).is_file():
        return True
    return program in _PROGRAMS and arguments != []
