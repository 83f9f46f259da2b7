"""Every command line, program and job in the documents works."""

import sys
import unittest
from pathlib import Path

import markdown
from commandlines import NOT_RUN, command_lines, kind_of, manual_lines
from shell import PROGRAMS, Shell

MANUALS = sorted((markdown.ROOT / "docs" / "man").glob("*.1"))


def blocks(kind: str) -> list[markdown.Block]:
    found = (block for document in markdown.documents() for block in markdown.code_blocks(document))
    return [block for block in found if kind_of(block) == kind]


def lines_of(document: Path) -> list[str]:
    commands = (block for block in markdown.code_blocks(document) if kind_of(block) == "commands")
    return [line for block in commands for line in command_lines(block)]


class CommandLines(unittest.TestCase):
    def test_every_command_line_of_the_documents_succeeds(self) -> None:
        for document in markdown.documents():
            with self.subTest(document.name), Shell() as shell:
                self.run_document(shell, list(markdown.code_blocks(document)))

    def run_document(self, shell: Shell, found: list[markdown.Block]) -> None:
        for block in found:
            if kind_of(block) == "c":
                shell.write("host.c", block)
            for line in command_lines(block) if kind_of(block) == "commands" else ():
                with self.subTest(block.place, line=line):
                    if line not in NOT_RUN:
                        shell.run(line)
            shell.end_block()

    def test_every_command_line_of_the_manual_pages_succeeds(self) -> None:
        self.assertEqual([page.name for page in MANUALS], ["nadrel-printer.1", "nadrel.1"])
        for page in MANUALS:
            lines = list(manual_lines(page))
            self.assertGreater(len(lines), 2)
            with Shell() as shell:
                for line in lines:
                    with self.subTest(page.name, line=line):
                        shell.run(line)

    def test_what_is_not_run_stands_in_a_document(self) -> None:
        written = {line for document in markdown.documents() for line in lines_of(document)}
        self.assertLessEqual(set(NOT_RUN), written)


class Programs(unittest.TestCase):
    def test_the_host_in_c_builds_with_the_line_beneath_it_and_prints(self) -> None:
        readme = markdown.ROOT / "README.md"
        (host,) = [block for block in markdown.code_blocks(readme) if kind_of(block) == "c"]
        (build,) = [line for line in lines_of(readme) if line.startswith("cc ")]
        with Shell() as shell:
            shell.write("host.c", host)
            shell.run(build)
            shell.run("./a.out")
            self.assertIn('"Thank you"', shell.printed)

    def test_every_python_program_runs(self) -> None:
        found = blocks("python")
        self.assertGreater(len(found), 1)
        for block in found:
            with self.subTest(block.place), Shell() as shell:
                shell.write("program.py", block)
                said = shell.run(f"{sys.executable} program.py")
                if "SerialPrinter" in "".join(block.lines):
                    self.assertIn("status=64", said)
                    self.assertIn('"Thank you"', shell.printed)


class Jobs(unittest.TestCase):
    def test_every_job_is_one_that_nadrel_runs(self) -> None:
        found = blocks("job")
        self.assertGreater(len(found), 1)
        for block in found:
            with self.subTest(block.place), Shell() as shell:
                shell.write("documented.job", block)
                shell.run("nadrel run documented.job --serial /dev/ttyUSB0")
                self.assertIn("print the line", shell.printed)

    def test_the_code_page_sheet_shows_the_line_that_is_described(self) -> None:
        described = (markdown.ROOT / "docs" / "first-print.md").read_text()
        with Shell() as shell:
            shell.run("nadrel run examples/codepages.job --serial /dev/ttyUSB0")
            self.assertIn("code table 16, Windows-1252", shell.printed)
            self.assertIn('"€‚‡œ£¤ÄÖÜäéñöü"', shell.printed.replace("16: ", ""))
        self.assertIn("`ÄÖÜäéñöü`", described)


if __name__ == "__main__":
    assert (PROGRAMS / "nadrel").exists(), "NADREL_PROGRAMS is the folder that nadrel is in"
    unittest.main()
