"""docs/commands.md names every function, and its examples send what it says."""

import os
import re
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

import calls
import header
import markdown
import nadrel
from peer import Peer
from virtual_printer import PROGRAM

DOCUMENT = markdown.ROOT / "docs" / "commands.md"
ANY_NUMBER = {"text", "name", "data", "bytes", "digits", "dots", "tokens", "zeros", "commands"}
PAGE_ONLY = "Page mode only"
CONNECTIONS = "Connections"
END = b"<end of the example>"
NAME_COLUMN = 59  # of a listing
NOT_DECODED = re.compile(rf"^.{{{NAME_COLUMN}}}(unknown|incomplete)\b", re.MULTILINE)


def bitmap(*lines: int) -> bytes:
    """A bitmap file of 8 dots a line, from the top, 1 bit a pixel."""
    rows = b"".join(bytes([line, 0, 0, 0]) for line in reversed(lines))
    file_header = struct.pack("<2sIII", b"BM", 62 + len(rows), 0, 62)
    information = struct.pack("<IiiHHIIiiII", 40, 8, len(lines), 1, 1, 0, len(rows), 0, 0, 0, 0)
    return file_header + information + bytes.fromhex("00 00 00 00 FF FF FF 00") + rows


PICTURES = {"logo.bmp": bitmap(0xA5, 0x0F), "band.bmp": bitmap(0xA5, *[0xFF] * 23)}


def listed(sent: bytes) -> str:
    """The virtual printer's listing of what it is sent."""
    with tempfile.NamedTemporaryFile() as captured:
        captured.write(sent)
        captured.flush()
        command = [PROGRAM, "--input", captured.name, "--listing"]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def pattern(text: str) -> re.Pattern[bytes]:
    """What the bytes of a function look like: its hexadecimal bytes, with others where letters stand."""
    expression = b""
    for word in [] if text == "none" else text.split():
        if re.fullmatch("[0-9A-F]{2}", word):
            expression += re.escape(bytes.fromhex(word))
        else:
            expression += b".+" if word in ANY_NUMBER else b"."
    return re.compile(expression, re.DOTALL)


class Commands(unittest.TestCase):
    tables = [(heading, rows) for heading, rows in markdown.tables(DOCUMENT) if "Function" in rows[0]]

    def test_every_function_has_one_row_with_the_parameters_of_the_header(self) -> None:
        documented = [markdown.code(row["Function"]) for _, rows in self.tables for row in rows]
        declared = [
            f"{f.name}({', '.join(p.name for p in f.parameters)})"
            for f in header.functions("NadrelPrinter.h").values()
        ]
        self.assertEqual(sorted(documented), sorted(declared))

    def test_only_connections_have_no_example(self) -> None:
        without = {heading for heading, rows in self.tables for row in rows if not row["Example"]}
        self.assertEqual(without, {CONNECTIONS})

    def test_every_example_calls_its_function(self) -> None:
        for row in self.examples():
            self.assertIn(markdown.code(row["Function"]).split("(")[0] + "(", row["Example"])

    def test_every_example_sends_what_stands_beside_it(self) -> None:
        with Peer() as peer, nadrel.TcpPrinter(peer.host, peer.port) as printer, Folder():
            for heading, rows in self.tables:
                for row in rows if heading != CONNECTIONS else []:
                    with self.subTest(row["Example"]):
                        self.require_row(printer, peer, row, heading == PAGE_ONLY)

    def require_row(self, printer: nadrel.Printer, peer: Peer, row: markdown.Row, on_page: bool) -> None:
        example = markdown.code(row["Example"])
        sent = self.sent(printer, peer, example, on_page)
        self.assertEqual(sent.hex(" "), calls.bytes_of(uncoded(row["Sends"])).hex(" "))
        self.assertTrue(pattern(uncoded(row["Bytes"])).fullmatch(sent), row["Bytes"])
        if on_page:
            self.assertEqual(self.sent(printer, peer, example, False), b"")

    def sent(self, printer: nadrel.Printer, peer: Peer, example: str, on_page: bool) -> bytes:
        """What the printer receives from an example that begins with an empty spool."""
        printer.set_page_mode() if on_page else printer.page_set_standard_mode()
        printer.clear_spool()
        calls.run(printer.functions, example)
        printer.print_spool()
        printer.append(END)
        printer.print_spool()
        return peer.take_until(END)

    def test_the_virtual_printer_knows_every_command_that_is_sent(self) -> None:
        for row in self.examples():
            with self.subTest(row["Example"]):
                commands = listed(calls.bytes_of(uncoded(row["Sends"])))
                self.assertEqual(commands == "", row["Sends"] == "none")
                self.assertIsNone(NOT_DECODED.search(commands), commands)

    def test_what_the_virtual_printer_does_not_know_is_found(self) -> None:
        for sent in (b"\x1f", b"\x1b@\x1b\x1fA", b"text\x1bJ"):
            self.assertRegex(listed(sent), NOT_DECODED)
        self.assertNotRegex(listed(b"unknown"), NOT_DECODED)

    def test_whole_bands_are_sent_as_written(self) -> None:
        (rows,) = [rows for _, rows in markdown.tables(DOCUMENT) if "Calls" in rows[0]]
        self.assertEqual(len(rows), 2)
        with Peer() as peer, nadrel.TcpPrinter(peer.host, peer.port) as printer, Folder():
            for row in rows:
                sent = self.sent(printer, peer, markdown.code(row["Calls"]), False)
                self.assertEqual(sent.hex(" "), calls.bytes_of(markdown.code(row["Sends"])).hex(" "))

    def examples(self) -> list[dict[str, str]]:
        return [row for _, rows in self.tables for row in rows if row["Example"]]


class Folder(tempfile.TemporaryDirectory[str]):
    """A working folder with the pictures of the examples."""

    def __enter__(self) -> str:
        folder = super().__enter__()
        self.before = os.getcwd()
        os.chdir(folder)
        for name, content in PICTURES.items():
            Path(name).write_bytes(content)
        return folder

    def __exit__(self, *reason: object) -> None:
        os.chdir(self.before)
        self.cleanup()


def uncoded(cell: str) -> str:
    return cell if cell == "none" else markdown.code(cell)


if __name__ == "__main__":
    unittest.main()
