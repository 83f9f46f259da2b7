"""docs/virtual-printer.md: what a host sees of each fault."""

import time
import unittest
from collections.abc import Callable
from functools import wraps

import markdown
import nadrel
from nadrel import Kind, PrinterError, SerialPrinter, TcpPrinter
from virtual_printer import VirtualPrinter

DOCUMENT = markdown.ROOT / "docs" / "virtual-printer.md"
PATIENCE = 30  # seconds
PATIENCE_MS = PATIENCE * 1000
Test = Callable[["Faults"], None]


def sees(option: str, effect: str) -> Callable[[Test], Test]:
    """A test of what the document says that a host sees of a fault."""

    def wrapped(test: Test) -> Test:
        @wraps(test)
        def run(self: "Faults") -> None:
            self.assertIn(effect, self.rows[option])
            test(self)

        setattr(run, "option", option)
        return run

    return wrapped


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

    def test_every_fault_is_tried(self) -> None:
        tests = [getattr(self, name) for name in dir(self) if name.startswith("test_")]
        self.assertEqual(set(self.rows), {test.option for test in tests if hasattr(test, "option")})

    @sees("--silent", "status queries end with -7, framed connects with -5")
    def test_a_silent_one_ends_queries_and_framed_connects(self) -> None:
        with self.assertRaises(PrinterError) as query:
            self.connected("--silent").get_printer_status(0)
        self.assertEqual(query.exception.code, -7)
        self.doCleanups()
        with self.assertRaises(PrinterError) as connect:
            self.connected("--silent", framed=True)
        self.assertEqual(connect.exception.code, -5)

    @sees("--paper-out", "the status is `41` instead of `40`")
    def test_one_without_paper_says_so_in_its_status(self) -> None:
        for options, expected in (((), 0x40), (("--paper-out",), 0x41)):
            printer = self.connected(*options)
            replies = printer.notifications()
            printer.get_printer_status(PATIENCE_MS)
            reply = replies.get(PATIENCE_MS)
            assert reply
            self.assertEqual(reply.status, expected)
            self.doCleanups()

    @sees("--flip-frames", "notification `15` instead of `06`")
    def test_one_that_flips_frames_refuses_them(self) -> None:
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

    @sees("--hang-up-after", "the link report counts an error")
    def test_one_that_hangs_up_is_counted_in_the_link_report(self) -> None:
        printer = self.connected("--hang-up-after", "3")
        printer.append(b"0123456789")
        deadline = time.monotonic() + PATIENCE
        while printer.link_report().error_count == 0:
            self.assertLess(time.monotonic(), deadline)
            printer.print_spool(clear=False)
        self.assertLess(printer.link_report().bytes_taken, printer.link_report().bytes_asked)

    @sees("--flood", "notifications `T` of up to 1024 bytes; printing goes on")
    def test_one_that_floods_does_not_keep_a_host_from_printing(self) -> None:
        printer = self.connected("--flood")
        reply = printer.notifications().get(PATIENCE_MS)
        assert reply
        self.assertEqual((reply.kind, set(reply.data)), (Kind.PRINT_OUT, {0x30}))
        self.assertLessEqual(len(reply.data), 1024)
        printer.print_data()
        printer.print_spool()
        report = printer.link_report()
        self.assertEqual((report.bytes_taken, report.bytes_asked, report.error_count), (1, 1, 0))

    @sees("--split-replies", "may come as several notifications")
    def test_one_that_splits_replies_says_it_all_the_same(self) -> None:
        printer = self.connected("--split-replies", "--model", "0123")
        replies = printer.notifications()
        printer.get_printer_model_name()
        said = b""
        while len(said) < 4 and (reply := replies.get(PATIENCE_MS)):
            said += reply.data
        self.assertEqual(said, b"0123")

    @sees("--reply-delay", "notifications come late; a status query asks again every 200 ms")
    def test_one_that_answers_late_is_asked_again(self) -> None:
        delay = 1.5  # seconds
        with VirtualPrinter("--reply-delay", str(round(delay * 1000))) as virtual:
            with TcpPrinter(virtual.host, virtual.port) as printer:
                replies = printer.notifications()
                asked = time.monotonic()
                printer.get_printer_status(PATIENCE_MS)
                reply = replies.get(PATIENCE_MS)
                assert reply
                self.assertEqual(reply.status, 0x40)
                self.assertGreaterEqual(time.monotonic() - asked, delay)
            self.assertGreater(virtual.quit().count("printer status"), 1)

    @sees("--read-rate", "over a serial port `PrintSpool` takes its time")
    def test_one_that_reads_slowly_keeps_a_serial_port_busy(self) -> None:
        rate, count, most_buffered = 40000, 32768, 16384  # bytes a second, bytes, bytes
        virtual = self.enterContext(VirtualPrinter("--read-rate", str(rate)))
        printer = self.enterContext(SerialPrinter(virtual.serial))
        printer.append(bytes(count))
        began = time.monotonic()
        printer.print_spool()
        self.assertGreater(time.monotonic() - began, (count - most_buffered) / rate)


if __name__ == "__main__":
    unittest.main()
