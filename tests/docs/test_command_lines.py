"""Every command line, program and job in the documents works."""

import unittest
from collections.abc import Iterator
from pathlib import Path

import markdown
from commandlines import NOT_RUN, STEP, command_lines, inline_command_lines, kind_of
from shell import PROGRAMS, Shell

MANUALS = sorted((markdown.ROOT / "docs" / "man").glob("*.1"))

# The files that the command lines take programs for, by the programs' languages.
FILES = {"c": "host.c", "csharp": "Host.cs", "python": "program.py"}


def blocks_of(document: Path) -> Iterator[markdown.Block]:
    return markdown.manual_blocks(document) if document in MANUALS else markdown.code_blocks(document)


def blocks(kind: str) -> list[markdown.Block]:
    found = (block for document in (*markdown.documents(), *MANUALS) for block in blocks_of(document))
    return [block for block in found if kind_of(block) == kind]


def lines_of(document: Path) -> list[str]:
    commands = (block for block in blocks_of(document) if kind_of(block) == "commands")
    return [line for block in commands for line in command_lines(block)]


class CommandLines(unittest.TestCase):
    def test_every_command_line_of_the_documents_succeeds(self) -> None:
        for document in markdown.documents():
            with self.subTest(document.name), Shell() as shell:
                self.run_blocks(shell, document)
                for line in inline_command_lines(document):
                    self.run_line(shell, document.name, line)

    def test_every_command_line_of_the_manual_pages_succeeds(self) -> None:
        self.assertEqual([page.name for page in MANUALS], ["nadrel-printer.1", "nadrel.1"])
        for page in MANUALS:
            self.assertGreater(len(lines_of(page)), 2)
            with Shell() as shell:
                self.run_blocks(shell, page)

    def run_blocks(self, shell: Shell, document: Path) -> None:
        for block in blocks_of(document):
            kind = kind_of(block)
            if kind in FILES:
                shell.write(FILES[kind], block)
            for line in command_lines(block) if kind == "commands" else ():
                self.run_line(shell, block.place, line)
            shell.end_block()

    def run_line(self, shell: Shell, place: str, line: str) -> None:
        with self.subTest(place, line=line):
            if line not in NOT_RUN:
                shell.run(line)

    def test_what_is_not_run_stands_in_a_document(self) -> None:
        written: set[str] = set()
        for document in markdown.documents():
            written.update(lines_of(document), inline_command_lines(document))
        self.assertLessEqual(set(NOT_RUN), written)

    def test_what_is_run_by_steps_is_a_step(self) -> None:
        steps = (markdown.ROOT / ".ci" / "run").read_text().splitlines()
        for line, reason in NOT_RUN.items():
            if reason == STEP:
                self.assertIn(line, steps)


class Programs(unittest.TestCase):
    def test_the_host_in_c_builds_with_the_line_beneath_it_and_prints(self) -> None:
        readme = markdown.ROOT / "README.md"
        (host,) = [block for block in markdown.code_blocks(readme) if kind_of(block) == "c"]
        lines = lines_of(readme)
        build = next(line for line in lines if line.startswith("cc "))
        with Shell() as shell:
            shell.write("host.c", host)
            shell.run(build)
            shell.run(lines[lines.index(build) + 1])
            self.assertIn('"Thank you"', shell.printed)

    def test_every_other_program_has_a_line_that_takes_it_or_runs_alone(self) -> None:
        for block in (block for kind in FILES for block in blocks(kind)):
            file = FILES[kind_of(block)]
            if any(file in line for line in lines_of(block.document)):
                continue
            with self.subTest(block.place), Shell() as shell:
                shell.write(file, block)
                shell.run(f"python3 {file}")

    def test_the_programs_of_the_bindings_print_and_are_told_the_status(self) -> None:
        for folder, status in (("python", "status=64"), ("dotnet", "status 40")):
            readme = markdown.ROOT / "bindings" / folder / "README.md"
            (program,) = [block for block in markdown.code_blocks(readme) if kind_of(block) in FILES]
            with self.subTest(folder), Shell() as shell:
                shell.write(FILES[kind_of(program)], program)
                said = [shell.run(line) for line in lines_of(readme)]
                self.assertIn(status, said[-1])
                self.assertIn('"Thank you"', shell.printed)


class Jobs(unittest.TestCase):
    def test_every_job_is_one_that_nadrel_runs(self) -> None:
        found = blocks("job")
        self.assertIn("nadrel.1", [block.document.name for block in found])
        self.assertGreater(len(found), 2)
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
