"""docs/virtual-printer.md: what a host sees of each fault."""

import time
import unittest

import markdown
import nadrel
from nadrel import Kind, PrinterError, TcpPrinter
from virtual_printer import VirtualPrinter

DOCUMENT = markdown.ROOT / "docs" / "virtual-printer.md"
PATIENCE = 30  # seconds
PATIENCE_MS = PATIENCE * 1000


class Faults(unittest.TestCase):
    rows = {
        markdown.code(row["Option"]).split()[0]: row["What a host sees"]
        for _, rows in markdown.tables(DOCUMENT)
        for row in rows
        if "What a host sees" in row
    }

    def connected(self, *options: str, framed: bool = False) -> nadrel.Printer:
        virtual = self.enterContext(VirtualPrinter(*options))
        return self.enterContext(TcpPrinter(virtual.host, virtual.port, framed=framed))

    def test_every_fault_is_tried_or_only_slow(self) -> None:
        tried = {"--silent", "--paper-out", "--flip-frames", "--hang-up-after", "--flood", "--split-replies"}
        self.assertEqual(set(self.rows), tried | {"--reply-delay", "--read-rate"})

    def test_a_silent_one_ends_queries_and_framed_connects(self) -> None:
        self.assertIn("status queries end with -7, framed connects with -5", self.rows["--silent"])
        with self.assertRaises(PrinterError) as query:
            self.connected("--silent").get_printer_status(0)
        self.assertEqual(query.exception.code, -7)
        self.doCleanups()
        with self.assertRaises(PrinterError) as connect:
            self.connected("--silent", framed=True)
        self.assertEqual(connect.exception.code, -5)

    def test_one_without_paper_says_so_in_its_status(self) -> None:
        self.assertIn("the status is `41` instead of `40`", self.rows["--paper-out"])
        for options, expected in (((), 0x40), (("--paper-out",), 0x41)):
            printer = self.connected(*options)
            replies = printer.notifications()
            printer.get_printer_status(PATIENCE_MS)
            reply = replies.get(PATIENCE_MS)
            assert reply
            self.assertEqual(reply.status, expected)
            self.doCleanups()

    def test_one_that_flips_frames_refuses_them(self) -> None:
        self.assertIn("notification `15` instead of `06`", self.rows["--flip-frames"])
        printer = self.connected("--flip-frames", "2", framed=True)
        replies = printer.notifications()
        told = []
        for _ in range(2):
            printer.print_data()
            printer.print_spool()
            reply = replies.get(PATIENCE_MS)
            assert reply
            told.append(reply.kind)
        self.assertEqual(told, [Kind.ACK, Kind.NAK])

    def test_one_that_hangs_up_is_counted_in_the_link_report(self) -> None:
        self.assertIn("the link report counts an error", self.rows["--hang-up-after"])
        printer = self.connected("--hang-up-after", "3")
        printer.append(b"0123456789")
        deadline = time.monotonic() + PATIENCE
        while printer.link_report().error_count == 0:
            self.assertLess(time.monotonic(), deadline)
            printer.print_spool(clear=False)
        self.assertLess(printer.link_report().bytes_taken, printer.link_report().bytes_asked)

    def test_one_that_floods_does_not_keep_a_host_from_printing(self) -> None:
        self.assertIn("notifications `T` of up to 1024 bytes; printing goes on", self.rows["--flood"])
        printer = self.connected("--flood")
        reply = printer.notifications().get(PATIENCE_MS)
        assert reply
        self.assertEqual((reply.kind, set(reply.data)), (Kind.PRINT_OUT, {0x30}))
        self.assertLessEqual(len(reply.data), 1024)
        printer.print_data()
        printer.print_spool()
        report = printer.link_report()
        self.assertEqual((report.bytes_taken, report.bytes_asked, report.error_count), (1, 1, 0))

    def test_one_that_splits_replies_says_it_all_the_same(self) -> None:
        self.assertIn("may come as several notifications", self.rows["--split-replies"])
        printer = self.connected("--split-replies", "--model", "0123")
        replies = printer.notifications()
        printer.get_printer_model_name()
        said = b""
        while len(said) < 4 and (reply := replies.get(PATIENCE_MS)):
            said += reply.data
        self.assertEqual(said, b"0123")


if __name__ == "__main__":
    unittest.main()
