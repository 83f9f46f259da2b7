"""docs/commands.md names every function, and its examples send what it says."""

import os
import re
import tempfile
import unittest
from pathlib import Path

import calls
import header
import markdown
import nadrel
from peer import Peer

DOCUMENT = markdown.ROOT / "docs" / "commands.md"
ANY_NUMBER = {"text", "name", "data", "bytes", "digits", "dots", "tokens", "zeros", "commands"}
PAGE_ONLY = "Page mode only"
CONNECTIONS = "Connections"
END = b"<end of the example>"

# 8 x 2, 1 bit a pixel, stored from the bottom up.
LOGO = bytes.fromhex(
    "42 4D 46 00 00 00 00 00 00 00 3E 00 00 00"
    "28 00 00 00 08 00 00 00 02 00 00 00 01 00 01 00 00 00 00 00 08 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 FF FF FF 00"
    "0F 00 00 00 A5 00 00 00"
)


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
    tables = list(markdown.tables(DOCUMENT))

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

    def examples(self) -> list[dict[str, str]]:
        return [row for _, rows in self.tables for row in rows if row["Example"]]


class Folder(tempfile.TemporaryDirectory[str]):
    """A working folder with the picture of the examples."""

    def __enter__(self) -> str:
        folder = super().__enter__()
        self.before = os.getcwd()
        os.chdir(folder)
        Path("logo.bmp").write_bytes(LOGO)
        return folder

    def __exit__(self, *reason: object) -> None:
        os.chdir(self.before)
        self.cleanup()


def uncoded(cell: str) -> str:
    return cell if cell == "none" else markdown.code(cell)


if __name__ == "__main__":
    unittest.main()
