"""Reads tables and code blocks out of Markdown documents."""

import re
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

Row = dict[str, str]  # cells by column heading


@dataclass(frozen=True)
class Block:
    """A code block: fenced, with its language; or indented by four spaces, up to an empty line, without one."""

    document: Path
    line: int  # of its first line, from 1
    language: str
    lines: tuple[str, ...]

    @property
    def place(self) -> str:
        return f"{self.document.relative_to(ROOT)}:{self.line}"


def documents() -> list[Path]:
    """Every Markdown document of the project."""
    folders = [ROOT, ROOT / "docs", *(path for path in (ROOT / "bindings").iterdir() if path.is_dir())]
    found = sorted(path for folder in folders for path in folder.glob("*.md"))
    assert ROOT / "README.md" in found
    return found


def code_blocks(document: Path) -> Iterator[Block]:
    """The code blocks of a document, in its order."""
    lines = document.read_text().splitlines()
    number = 0
    while number < len(lines):
        if lines[number].startswith("```"):
            end = lines.index("```", number + 1)
            yield Block(document, number + 2, lines[number][3:].strip(), tuple(lines[number + 1 : end]))
            number = end + 1
        elif _begins_indented(lines, number):
            end = _end_of_indented(lines, number)
            text = tuple(line[4:] for line in lines[number:end])
            yield Block(document, number + 1, "", text)
            number = end
        else:
            number += 1


_SPAN = re.compile(r"(`+)((?:(?!\n\n).)+?)\1(?!`)", re.DOTALL)


def code_spans(document: Path) -> Iterator[tuple[int, str]]:
    """The pieces of code in backticks within the text of a document, each with its line, from 1."""
    lines = document.read_text().splitlines()
    for block in code_blocks(document):
        lines[block.line - 1 : block.line - 1 + len(block.lines)] = [""] * len(block.lines)
    text = "\n".join("" if line.startswith("```") else line for line in lines)
    for span in _SPAN.finditer(text):
        yield text.count("\n", 0, span.start()) + 1, " ".join(span[2].split())


_ROFF = {r"\-": "-", r"\e": "\\", r"\(aq": "'", r"\('e": "é", r"\(`e": "è", r"\(Eu": "€"}


def manual_blocks(page: Path) -> Iterator[Block]:
    """The examples of a manual page, in its order, as they are shown."""
    text = page.read_text()
    for example in re.finditer(r"^\.EX\n(.*?)^\.EE$", text, re.DOTALL | re.MULTILINE):
        shown = re.sub(r"\\(?:\(..|.)", lambda escape: _ROFF[escape[0]], example[1])
        yield Block(page, text.count("\n", 0, example.start(1)) + 1, "", tuple(shown.splitlines()))


def _begins_indented(lines: list[str], number: int) -> bool:
    return lines[number].startswith("    ") and (number == 0 or not lines[number - 1].strip())


def _end_of_indented(lines: list[str], number: int) -> int:
    while number < len(lines) and lines[number].startswith("    "):
        number += 1
    return number


def tables(document: Path) -> Iterator[tuple[str, list[Row]]]:
    """The tables of a document, each under the heading above it."""
    heading, columns, rows = "", [""], list[Row]()
    for line in [*document.read_text().splitlines(), ""]:
        if line.startswith("|---"):
            continue
        if line.startswith("|"):
            cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
            if columns == [""]:
                columns = cells
            else:
                rows.append(dict(zip(columns, cells, strict=True)))
        elif columns != [""]:
            yield heading, rows
            columns, rows = [""], []
        if line.startswith("#"):
            heading = line.lstrip("# ")


def code(cell: str) -> str:
    """A cell that is one piece of code in backticks."""
    match = re.fullmatch(r"`+ ?(.*?) ?`+", cell)
    assert match, f"the cell {cell!r} is no code"
    return match[1]
