"""The Python package on real links: a virtual printer, and a peer that keeps bytes."""

import _ctypes
import gc
import logging
import os
import queue
import subprocess
import sys
import threading
import unittest
from collections.abc import Callable, Iterator
from contextlib import contextmanager

import nadrel
from nadrel import Kind, Notification, Printer, PrinterError, SerialPrinter, TcpPrinter
from peer import Peer
from virtual_printer import VirtualPrinter

PATIENCE = 30  # seconds
PATIENCE_MS = PATIENCE * 1000
Connect = Callable[[VirtualPrinter], Printer]


def on_serial(virtual: VirtualPrinter) -> Printer:
    return SerialPrinter(virtual.serial)


def on_tcp(virtual: VirtualPrinter) -> Printer:
    return TcpPrinter(virtual.host, virtual.port)


def framed(virtual: VirtualPrinter) -> Printer:
    return TcpPrinter(virtual.host, virtual.port, framed=True)


@contextmanager
def linked(connect: Connect, *options: str) -> Iterator[tuple[VirtualPrinter, Printer]]:
    with VirtualPrinter(*options) as virtual, connect(virtual) as printer:
        yield virtual, printer


class Links(unittest.TestCase):
    def each(self) -> Iterator[Connect]:
        for connect in (on_serial, on_tcp, framed):
            with self.subTest(connect.__name__):
                yield connect

    def test_text_reaches_the_paper(self) -> None:
        for connect in self.each():
            with linked(connect) as (virtual, printer):
                printer.set_text_alignment(nadrel.Alignment.CENTRE)
                printer.text("Café 3 €")
                printer.print_data()
                printer.print_spool()
                printer.close()
                listing = virtual.quit()
            self.assertIn("alignment centre", listing)
            self.assertIn('"Café 3 €"', listing)

    def test_the_status_comes_as_a_notification(self) -> None:
        for connect in self.each():
            with linked(connect) as (_, printer):
                replies = printer.notifications()
                printer.get_printer_status(PATIENCE_MS)
                reply = replies.get(PATIENCE_MS)
            assert reply
            self.assertEqual((reply.kind, reply.status), (Kind.STATUS, 0x40))

    def test_model_name_and_firmware_version_come_one_after_the_other(self) -> None:
        with linked(on_tcp, "--model", "M-7", "--firmware", "2.1") as (_, printer):
            replies = printer.notifications()
            printer.get_printer_model_name()
            self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"M-7"))
            printer.get_firmware_version()
            self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"2.1"))

    def test_a_swiped_card_comes_as_card_data(self) -> None:
        with linked(on_serial, "--swipe-after", "1") as (_, printer):
            replies = printer.notifications()
            printer.enter_msr_mode(0)
            card = replies.get(PATIENCE_MS)
        assert card
        self.assertEqual(card.kind, Kind.CARD)
        self.assertEqual(card.data[:1], b"\x1b")
        self.assertGreater(len(card.data), 10)

    def test_the_link_report_counts_the_bytes(self) -> None:
        with linked(on_tcp) as (_, printer):
            printer.text("twelve bytes")
            printer.print_spool()
            report = printer.link_report()
        self.assertEqual((report.bytes_asked, report.bytes_taken, report.error_count), (12, 12, 0))

    def test_text_goes_out_in_the_code_page_that_was_set(self) -> None:
        with linked(on_tcp) as (_, printer):
            self.assertEqual(printer.convert("é€\U0001f5a8"), b"\xe9\x80?")
            printer.set_ansi_code_page(437)
            try:
                self.assertEqual(printer.convert("é€"), b"\x82?")
            finally:
                printer.set_ansi_code_page(1252)


class Errors(unittest.TestCase):
    def failure(self, call: Callable[[], object]) -> tuple[str, int, str]:
        with self.assertRaises(PrinterError) as caught:
            call()
        return caught.exception.function, caught.exception.code, caught.exception.meaning

    def test_the_same_number_means_different_things(self) -> None:
        with linked(on_tcp) as (virtual, printer):
            self.assertEqual(
                self.failure(lambda: on_tcp(virtual)),
                ("ConnectWirelessPrinter", -1, "a serial or TCP link is already open"),
            )
            self.assertEqual(
                self.failure(lambda: printer.bmp("/no/such/file.bmp", 0, 0)),
                ("BmpSaveSpool", -1, "the file cannot be loaded: it must be a bitmap file (BMP)"),
            )

    def test_a_port_that_is_not_there(self) -> None:
        self.assertEqual(
            self.failure(lambda: SerialPrinter("/dev/no-such-port", open_timeout_ms=None)),
            ("InitPrinter", -2, "the port could not be opened"),
        )

    def test_a_silent_printer(self) -> None:
        with linked(on_tcp, "--silent") as (_, printer):
            self.assertEqual(
                self.failure(lambda: printer.get_printer_status(400)),
                ("GetPrinterStatus", -7, "the printer did not answer in time"),
            )

    def test_a_spool_that_is_full(self) -> None:
        with linked(on_tcp) as (_, printer):
            self.assertEqual(printer.append(bytes(409600)), 409600)
            self.assertEqual(
                self.failure(lambda: printer.append(b"x")),
                ("ControlCommand", -12, "the spool has no room for it"),
            )
            self.assertEqual(
                str(PrinterError("ControlCommand", -12)), "ControlCommand: the spool has no room for it (-12)"
            )

    def test_appending_nothing_is_no_error(self) -> None:
        with linked(on_tcp) as (_, printer):
            self.assertEqual(printer.append(b""), 0)

    def test_a_printer_that_is_closed(self) -> None:
        with linked(on_tcp) as (_, printer):
            printer.close()
            self.assertTrue(printer.closed)
            self.assertEqual(
                self.failure(lambda: printer.text("x")), ("TextSaveSpool", -11, "the printer is closed")
            )
            self.assertIsNone(printer.notifications().get())
            printer.close()

    def test_lengths_that_the_library_would_not_tell_from_success(self) -> None:
        with linked(on_tcp) as (_, printer):
            for identifier, units in (("1", 1), ("1234567\U0001f600", 9), ("\ud83d\ude00", 2)):
                with self.assertRaisesRegex(ValueError, f"{units} UTF-16 units, 8 are expected"):
                    printer.set_terminal_id(identifier)
            for second, units in (("12", 2), ("2026112\U0001f600", 9)):
                with self.assertRaisesRegex(ValueError, f"{units} UTF-16 units, 8 are expected"):
                    printer.set_payment_req(False, "1", second, "123456")
            self.assertEqual(
                self.failure(lambda: printer.set_payment_req(False, "1", "20261121", "12"))[:2],
                ("SetPaymentReq", -4),
            )

    def test_a_character_of_two_units_counts_as_two(self) -> None:
        with Peer() as peer, TcpPrinter(peer.host, peer.port) as printer:
            printer.set_terminal_id("123456\U0001f600")
            self.assertEqual(peer.take(10), b"\x1bm123456\x3d\x00")
            printer.set_payment_req(False, "", "202611\U0001f600", "000000")
            self.assertEqual(peer.take(16), b"\x1bn" + bytes(7) + b"\x20\x26\x11\xd0" + bytes(3))

    def test_a_code_page_that_is_unknown(self) -> None:
        with linked(on_tcp) as (_, printer):
            self.assertEqual(self.failure(lambda: printer.set_ansi_code_page(1))[:2], ("SetAnsiCodePage", 0))

    def test_another_library_is_refused(self) -> None:
        with self.assertRaisesRegex(OSError, "is another library: it has no function"):
            nadrel.load(_ctypes.__file__)

    def test_a_file_that_is_not_there_is_told(self) -> None:
        with self.assertRaisesRegex(OSError, "no-such-library"):
            nadrel.load("/no-such-library.so")


class Handlers(unittest.TestCase):
    def test_a_handler_gets_copies_that_later_replies_leave_alone(self) -> None:
        told: queue.Queue[Notification] = queue.Queue()
        with Peer() as peer, TcpPrinter(peer.host, peer.port, handler=told.put) as printer:
            self.ask(printer, peer, b"first answer")
            first = told.get(timeout=PATIENCE)
            self.ask(printer, peer, b"SECOND ANSWER")
            second = told.get(timeout=PATIENCE)
        self.assertEqual((first.data, second.data), (b"first answer", b"SECOND ANSWER"))

    def test_a_handler_is_told_what_comes_while_connecting(self) -> None:
        told: queue.Queue[Notification] = queue.Queue()
        with Peer() as peer, TcpPrinter(peer.host, peer.port, framed=True, handler=told.put):
            self.assertEqual(told.get(timeout=PATIENCE), Notification(Kind.STATUS, status=0x40))

    def test_the_handler_of_a_refused_connect_leaves_that_of_the_open_printer(self) -> None:
        told: queue.Queue[Notification] = queue.Queue()
        other: queue.Queue[Notification] = queue.Queue()
        with Peer() as peer, TcpPrinter(peer.host, peer.port, handler=told.put) as printer:
            with self.assertRaises(PrinterError):
                TcpPrinter(peer.host, peer.port, handler=other.put)
            self.ask(printer, peer, b"answer")
            self.assertEqual(told.get(timeout=PATIENCE), Notification(Kind.REPLY, b"answer"))
        self.assertTrue(other.empty())

    def test_the_handler_of_a_connect_that_failed_is_gone(self) -> None:
        with VirtualPrinter("--silent") as virtual:
            with self.assertRaises(PrinterError):
                TcpPrinter(virtual.host, virtual.port, framed=True, handler=lambda _: None)
        dispatcher = nadrel.load().dispatcher
        assert dispatcher
        self.assertIsNone(dispatcher.handler)

    def ask(self, printer: Printer, peer: Peer, answer: bytes) -> None:
        printer.get_printer_model_name()
        self.assertEqual(peer.take(3), b"\x1bY\xff")
        peer.send(answer)

    def test_what_a_handler_raises_is_logged_and_kills_nothing(self) -> None:
        for failure in (RuntimeError("broken"), SystemExit(3), KeyboardInterrupt()):
            with self.subTest(type(failure).__name__), linked(on_tcp) as (_, printer):

                def fail(_: Notification, error: BaseException = failure) -> None:
                    raise error

                printer.set_notification_handler(fail)
                replies = printer.notifications()
                with self.assertLogs("nadrel", logging.ERROR) as log:
                    printer.get_printer_model_name()
                    self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"NADREL-VP58"))
                    printer.get_firmware_version()
                    # One thread tells them: at the second the handler is done with the first.
                    self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"VP 1.0"))
                self.assertIn("a notification handler failed", log.output[0])

    def test_a_handler_may_close_the_printer(self) -> None:
        with linked(on_tcp) as (_, printer):
            closed = threading.Event()

            def close(_: Notification) -> None:
                printer.close()
                closed.set()

            printer.set_notification_handler(close)
            printer.get_printer_model_name()
            self.assertTrue(closed.wait(PATIENCE))
            self.assertTrue(printer.closed)

    def test_a_printer_that_is_dropped_closes_its_link(self) -> None:
        with VirtualPrinter() as virtual:
            dropped = on_tcp(virtual)
            dropped.set_notification_handler(lambda _: None)
            with self.assertWarnsRegex(ResourceWarning, "was not closed"):
                del dropped
                gc.collect()
            with on_tcp(virtual) as printer:
                replies = printer.notifications()
                printer.get_printer_model_name()
                self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"NADREL-VP58"))

    def test_a_library_object_that_is_dropped_leaves_its_callback_alive(self) -> None:
        with Peer() as peer:
            library = nadrel.load()
            printer = TcpPrinter(peer.host, peer.port)
            replies = printer.notifications()
            del library
            gc.collect()
            printer.get_printer_model_name()
            peer.take(3)
            peer.send(b"still here")
            self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"still here"))
            printer.close()


class Streams(unittest.TestCase):
    def test_iterating_ends_when_nothing_comes_any_more(self) -> None:
        with linked(on_tcp) as (_, printer):
            replies = printer.notifications(timeout_ms=1)
            printer.get_printer_model_name()
            self.assertEqual(replies.get(PATIENCE_MS), Notification(Kind.REPLY, b"NADREL-VP58"))
            self.assertEqual(list(replies), [])
            replies.put(Notification(Kind.ACK))
            self.assertEqual(list(replies), [])

    def test_iterating_gives_what_came_before_the_end(self) -> None:
        with nadrel.NotificationStream() as replies:
            replies.put(Notification(Kind.ACK))
            replies.put(Notification(Kind.NAK))
        self.assertEqual([reply.kind for reply in replies], [Kind.ACK, Kind.NAK])

    def test_closing_the_printer_ends_who_waits(self) -> None:
        with linked(on_tcp) as (_, printer):
            replies = printer.notifications()
            told: list[Notification] = []
            waiting = threading.Thread(target=lambda: told.extend(replies))
            waiting.start()
            printer.close()
            waiting.join(PATIENCE)
            self.assertFalse(waiting.is_alive())
            self.assertEqual(told, [])

    def test_what_nobody_takes_is_dropped_beyond_10000(self) -> None:
        stream = nadrel.NotificationStream()
        for _ in range(10003):
            stream.put(Notification(Kind.ACK))
        self.assertEqual(stream.dropped, 3)
        stream.close()
        self.assertEqual(len(list(stream)), 10000)

    def test_two_streams_are_told_the_same(self) -> None:
        with linked(on_tcp) as (_, printer):
            one, other = printer.notifications(), printer.notifications()
            printer.get_printer_model_name()
            self.assertEqual(one.get(PATIENCE_MS), other.get(PATIENCE_MS))


class Messages(unittest.TestCase):
    def test_a_framed_status_is_the_value_itself(self) -> None:
        told = Notification.from_message(ord("S") << 16 | 7, 0x40)
        self.assertEqual(told, Notification(Kind.STATUS, b"", 0x40))

    def test_a_kind_without_data_is_told_without(self) -> None:
        self.assertEqual(Notification.from_message(0x06 << 16 | 7, 0), Notification(Kind.ACK))

    def test_an_unknown_kind_stays_a_number(self) -> None:
        self.assertEqual(Notification.from_message(0x58 << 16, 0).kind, 0x58)


class Processes(unittest.TestCase):
    """What happens to a whole interpreter."""

    def run_program(self, *lines: str, **environment: str) -> subprocess.CompletedProcess[str]:
        program = "\n".join(("import nadrel, nadrel.library", *lines))
        command = [sys.executable, "-c", program]
        surroundings = {**os.environ, **environment}
        return subprocess.run(command, capture_output=True, text=True, timeout=120, env=surroundings)

    def test_one_that_ends_with_an_open_link_and_a_talking_printer_ends_well(self) -> None:
        with Peer() as peer:
            peer.talk(b"0")
            ended = self.run_program(
                "import threading, time",
                "told = threading.Event()",
                "class Lingering:",
                "    'Lets other threads run once more when the interpreter is already ending.'",
                "    def __del__(self, pause=time.sleep): pause(1)",
                "lingering = Lingering()",
                "library = nadrel.load()",
                "library.dispatcher.handler = lambda _: told.set()",
                f"assert library.functions.InitWlanPrinter('{peer.host}', {peer.port}, 30000, 0) == 1",
                "assert told.wait(60)",
            )
        self.assertEqual((ended.returncode, ended.stdout), (0, ""), ended.stderr)

    def test_one_without_the_library_is_told_what_to_set(self) -> None:
        ended = self.run_program(
            "nadrel.library._candidates = lambda: iter(['libno-such-name.so'])",
            "nadrel.load()",
            NADREL_LIBRARY="",
        )
        self.assertNotEqual(ended.returncode, 0)
        self.assertIn("set NADREL_LIBRARY to its file", ended.stderr)


if __name__ == "__main__":
    unittest.main()
