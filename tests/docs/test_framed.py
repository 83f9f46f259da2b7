"""docs/framed.md: its frames are those that the library sends, and its Python makes them."""

import unittest
from collections.abc import Callable

import calls
import markdown
import nadrel
from peer import QUERY_FRAME, Peer

DOCUMENT = markdown.ROOT / "docs" / "framed.md"
PATIENCE_MS = 30000


def documented_frame() -> Callable[..., bytes]:
    """The function that the document shows."""
    (block,) = [block for block in markdown.code_blocks(DOCUMENT) if block.language == "python"]
    names: dict[str, Callable[..., bytes]] = {}
    exec("\n".join(block.lines), names)
    return names["frame"]


class Framed(unittest.TestCase):
    def setUp(self) -> None:
        self.peer = self.enterContext(Peer())
        self.printer = self.enterContext(nadrel.TcpPrinter(self.peer.host, self.peer.port, framed=True))
        self.assertEqual(self.peer.take(len(QUERY_FRAME)), QUERY_FRAME)

    def sent(self, example: str, count: int) -> bytes:
        calls.run(self.printer.functions, example)
        return self.peer.take(count)

    def test_the_worked_example_is_what_the_library_sends(self) -> None:
        (steps,) = [rows for _, rows in markdown.tables(DOCUMENT) if "Step" in rows[0]]
        step = {row["Step"].split(",")[0].split("=")[0].strip(): markdown.code(row["Bytes"]) for row in steps}
        step |= {row["Step"]: markdown.code(row["Bytes"]) for row in steps}
        parts = (step["its length"], step["payload, escaped"], step["check value, escaped"])
        self.assertEqual(step["the frame"], " ".join(("00 C0 44 31", *parts, "C1")))
        frame = calls.bytes_of(step["the frame"])
        self.assertEqual(self.sent('TextSaveSpool("ÀÁ}"); PrintSpool(1)', len(frame)), frame)
        payload = calls.bytes_of(steps[0]["Bytes"].strip("`"))
        check = bytes((payload[0] ^ payload[2], payload[1]))
        self.assertEqual(calls.bytes_of(step["`c0`"] + " " + step["`c1`"]), check)
        self.assertEqual(documented_frame()(payload), frame)

    def test_the_other_frames_are_what_the_library_sends(self) -> None:
        (rows,) = [rows for _, rows in markdown.tables(DOCUMENT) if "Calls" in rows[0]]
        for row in rows:
            with self.subTest(row["Calls"]):
                frame = calls.bytes_of(markdown.code(row["Sends"]))
                self.assertEqual(self.sent(markdown.code(row["Calls"]), len(frame)).hex(" "), frame.hex(" "))

    def test_the_python_makes_the_frames_that_the_library_sends(self) -> None:
        frame = documented_frame()
        short = (b"", b"\xc0", b"a\x7db\xc1", bytes(range(256)))
        for payload in (*short, bytes(9999), b"x" * 10000, b"y" * 123456):
            with self.subTest(len(payload)):
                self.printer.append(payload)
                self.printer.print_spool()
                expected = frame(payload)
                self.assertEqual(self.peer.take(len(expected)), expected)

    def test_what_a_refused_run_of_text_leaves_counts_in_the_check_value(self) -> None:
        frame = documented_frame()
        for payload in (b"x" * 9990, b"y" * 9991):
            with self.subTest(len(payload)):
                self.printer.append(payload)
                with self.assertRaisesRegex(nadrel.PrinterError, "-12"):
                    self.printer.append_run("too long", 0, True)
                for behind in (b"\x1d!\x00\x1bE\x01", b""):
                    expected = frame(payload, behind)
                    self.printer.print_spool()
                    self.assertEqual(self.peer.take(len(expected)), expected)
                    self.printer.append(payload)
                self.printer.clear_spool()
                self.assertNotEqual(frame(payload), frame(payload, b"\x1d!"))

    def test_status_queries_send_the_query_frame(self) -> None:
        for query in (self.printer.get_printer_status, self.printer.get_printer_status_ex):
            query(PATIENCE_MS)
            self.assertEqual(self.peer.take(len(QUERY_FRAME)), QUERY_FRAME)

    def test_three_requests_are_never_framed(self) -> None:
        for call, sent in (
            ("SecuredCardCancel()", b"\x1bMX"),
            ('SetTermialID("12345678")', b"\x1bm12345678"),
            ('SetPaymentReq(0, "", "00000000", "000000")', b"\x1bn" + bytes(14)),
        ):
            self.assertEqual(self.sent(call, len(sent)), sent)


if __name__ == "__main__":
    unittest.main()
