"""Options, links and names in the documents are those of the programs and the sources."""

import json
import os
import re
import subprocess
import unittest
from pathlib import Path

import markdown

PROGRAMS = Path(os.environ.get("NADREL_PROGRAMS", "."))
DOCS = markdown.ROOT / "docs"
_OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def options_of(*command: str) -> set[str]:
    """The options that a program's help lists."""
    said = subprocess.run([PROGRAMS / command[0], *command[1:], "--help"], capture_output=True, text=True)
    assert said.returncode == 0, said.stderr
    return set(re.findall(r"^\s+(?:-\w,)?(--[a-z][a-z-]*)", said.stdout, re.MULTILINE))


def subcommands() -> list[str]:
    """The subcommands that nadrel's help lists."""
    said = subprocess.run([PROGRAMS / "nadrel", "--help"], capture_output=True, text=True).stdout
    return re.findall(r"^  (\w+) ", said.partition("Subcommands:")[2], re.MULTILINE)


def options_in_page(page: str) -> set[str]:
    """The options that a manual page lists in its tagged paragraphs."""
    text = (DOCS / "man" / page).read_text().replace(r"\-", "-")
    return set(_OPTION.findall("\n".join(re.findall(r"^\.TP\n(.*)", text, re.MULTILINE))))


class Options(unittest.TestCase):
    def test_the_page_of_the_tool_lists_its_options_and_no_others(self) -> None:
        known = options_of("nadrel").union(*(options_of("nadrel", name) for name in subcommands()))
        self.assertGreater(len(known), 5)
        self.assertEqual(options_in_page("nadrel.1"), known)

    def test_the_page_of_the_tool_lists_its_subcommands(self) -> None:
        text = (DOCS / "man" / "nadrel.1").read_text()
        self.assertIn("status", subcommands())
        for name in subcommands():
            self.assertIn(f"\n.TP\n.B {name}\n", text)
            self.assertIn(f".B nadrel {name}\n", text)

    def test_the_page_of_the_virtual_printer_lists_its_options_and_no_others(self) -> None:
        self.assertEqual(options_in_page("nadrel-printer.1"), options_of("nadrel-printer"))

    def test_the_document_of_the_virtual_printer_lists_its_options_and_no_others(self) -> None:
        tables = [rows for _, rows in markdown.tables(DOCS / "virtual-printer.md") if "Option" in rows[0]]
        listed = {option for rows in tables for row in rows for option in _OPTION.findall(row["Option"])}
        self.assertEqual(listed, options_of("nadrel-printer"))


class Names(unittest.TestCase):
    def test_every_link_leads_to_a_file(self) -> None:
        links = 0
        for document in markdown.documents():
            for link in re.findall(r"\]\(([^)#:]+)\)", document.read_text()):
                links += 1
                self.assertTrue((document.parent / link).exists(), f"{document.name}: {link}")
        self.assertGreater(links, 5)

    def test_every_file_and_folder_that_is_named_exists(self) -> None:
        named = re.compile(r"`((?:[\w.-]+/)+[\w.-]*)`")
        for document in markdown.documents():
            for path in named.findall(document.read_text()):
                with self.subTest(document.name, path=path):
                    self.assertTrue((markdown.ROOT / path).exists() or self.is_elsewhere(path))

    def is_elsewhere(self, path: str) -> bool:
        return path.startswith("/dev/") or "<" in path or self.is_made_by_a_preset(path)

    def is_made_by_a_preset(self, path: str) -> bool:
        presets = json.loads((markdown.ROOT / "CMakePresets.json").read_text())["configurePresets"]
        folders = [f"build/{preset['name']}" for preset in presets if not preset.get("hidden")]
        return any(path == folder or path.startswith(folder + "/") for folder in folders)

    def test_the_seam_is_described_whole(self) -> None:
        (rows,) = [rows for _, rows in markdown.tables(DOCS / "porting.md")]
        listed = [markdown.code(row["Header"]) for row in rows]
        self.assertEqual(listed, sorted(path.name for path in (markdown.ROOT / "platform").glob("*.h")))

    def test_the_state_is_described_whole(self) -> None:
        text = (markdown.ROOT / "spool" / "State.h").read_text()
        variables = set(re.findall(r"^inline (?:constinit .*?|constexpr \w+ &)(\w+)(?:\[\w+\])?(?: = .*)?;$", text, re.M))
        (rows,) = [rows for _, rows in markdown.tables(DOCS / "architecture.md") if "Written by" in rows[0]]
        listed = {name for row in rows for name in re.findall(r"`(\w+)`", row["State"])}
        self.assertGreater(len(variables), 20)
        self.assertEqual(listed, variables)

    def test_the_rooms_include_only_what_is_said(self) -> None:
        tables = [rows for _, rows in markdown.tables(DOCS / "architecture.md") if "Includes" in rows[0]]
        for row in tables[0]:
            room = markdown.code(row["Folder"]).rstrip("/")
            with self.subTest(room):
                allowed = set(re.findall(r"`(\w+)/`", row["Includes"]))
                self.assertLessEqual(included(room), allowed | {room, "api"})


def included(room: str) -> set[str]:
    """The folders whose headers a room's files include."""
    found: set[str] = set()
    for path in (markdown.ROOT / room).rglob("*"):
        if path.suffix in (".h", ".cpp", ".c"):
            found |= set(re.findall(r'^#include "(\w+)/', path.read_text(), re.MULTILINE))
    return found


if __name__ == "__main__":
    unittest.main()
