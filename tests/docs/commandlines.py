"""Which lines of the documents are command lines, and which of them are not run."""

import re
from collections.abc import Iterator
from pathlib import Path

import markdown

# Command lines that no test runs, each with the reason.
NOT_RUN = {
    "./dev coverage": "builds once more, with counters, and runs most tests",
    "./dev demo": "installs packages and builds; .ci/run runs it",
    "./dev package": "builds; the tests of the packages make and use them",
    "./dev test": "is what runs this test",
    "sudo usermod -aG dialout $USER": "needs root and changes the user's groups",
}

_PROGRAMS = {"./dev", "cc", "for", "ls", "nadrel", "nadrel-printer", "printf", "python3", "sudo"}
_CALL = re.compile(r"[A-Za-z_]\w*\(")

# Indented blocks that are neither command lines nor jobs, by their first line.
_TEXT = {
    "00 C0 44 31 <length: four ASCII digits> <payload> <c0> <c1> C1",
    "00 C0 51 C1",
}
_LANGUAGES = {"sh": "commands", "c": "c", "python": "python", "text": "text"}


def kind_of(block: markdown.Block) -> str:
    """What a block is: commands, job, c, python or text."""
    if block.language:
        return _LANGUAGES[block.language]
    first = block.lines[0]
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


def manual_lines(page: Path) -> Iterator[str]:
    """The command lines in the examples of a manual page."""
    for example in re.findall(r"^\.EX\n(.*?)^\.EE$", page.read_text(), re.DOTALL | re.MULTILINE):
        for line in example.replace(r"\-", "-").replace(r"\e", "\\").splitlines():
            if line.split() and line.split()[0] in _PROGRAMS:
                yield line.strip()
