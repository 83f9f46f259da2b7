"""Each method calls its C function with the arguments in their places."""

import inspect
import unittest
from collections.abc import Callable
from typing import Any
from unittest.mock import patch

from nadrel import Alignment, Parity, Printer, SerialPrinter, StopBits, TcpPrinter, declarations

Call = tuple[str, tuple[object, ...]]


class RecordingFunctions:
    """Stands for the library: notes every call; every result is 1."""

    def __init__(self) -> None:
        self.calls: list[Call] = []

    def __getattr__(self, name: str) -> Callable[..., Any]:
        def record(*arguments: object) -> object:
            self.calls.append((name, arguments))
            return b"converted" if name == "U2A" else 1

        return record


class RecordingLibrary:
    def __init__(self) -> None:
        self.functions = RecordingFunctions()
        self.dispatcher = None


class OpenPrinter(Printer):
    def __init__(self) -> None:
        self._library = RecordingLibrary()  # type: ignore[assignment]
        self._streams = set()  # type: ignore[assignment]
        self._handler = None
        self._open = True

    def calls(self) -> list[Call]:
        return self.functions.calls  # type: ignore[no-any-return]


ROWS: list[tuple[Callable[[Printer], object], str, tuple[object, ...]]] = [
    (lambda p: p.append(b"ab\0"), "ControlCommand", (b"ab\0", 3)),
    (lambda p: p.append_run("a", 1, True), "SaveSpool", ("a", 1, 1)),
    (lambda p: p.convert("a"), "U2A", ("a",)),
    (lambda p: p.clear_spool(), "ClearSpool", ()),
    (lambda p: p.print_spool(), "PrintSpool", (1,)),
    (lambda p: p.print_spool(clear=False), "PrintSpool", (0,)),
    (lambda p: p.port_handle, "GetPortHandle", ()),
    (lambda p: p.text("a"), "TextSaveSpool", ("a",)),
    (lambda p: p.print_data(), "PrintData", ()),
    (lambda p: p.print_dot_feed(3), "PrintDotFeed", (3,)),
    (lambda p: p.print_line_feed(3), "PrintLineFeed", (3,)),
    (lambda p: p.init_printer_status(), "InitPrinterStatus", ()),
    (lambda p: p.set_print_position(1, 2), "SetPrintPosition", (1, 2)),
    (lambda p: p.set_abs_position(3), "SetAbsPosition", (3,)),
    (lambda p: p.set_line_space(3), "SetLineSpace", (3,)),
    (lambda p: p.set_char_space(3), "SetCharSpace", (3,)),
    (lambda p: p.set_char_code_table(3), "SetCharCodeTableEX", (3,)),
    (lambda p: p.set_char_code_table(3, 2), "SetCharCodeTable", (3, 2)),
    (lambda p: p.set_font_size(2), "SetFontSize", (2,)),
    (lambda p: p.set_text_style(2, True, 3, 4, False), "SetTextStyle", (2, 1, 3, 4, 0)),
    (lambda p: p.set_upside_down(True), "SetUpsideDown", (1,)),
    (lambda p: p.set_text_alignment(Alignment.RIGHT), "SetTextAlignment", (2,)),
    (lambda p: p.cut_paper(partly=True), "CutPaper", (1,)),
    (lambda p: p.feed_to_mark(), "FeedToMark", ()),
    (lambda p: p.set_position_from_mark(3), "SetPositionFromMark", (3,)),
    (lambda p: p.set_mark_use_mode(True), "SetMarkUseMode", (1,)),
    (lambda p: p.init_page_mode(1, 2, 3, 4), "InitPageMode", (1, 2, 3, 4)),
    (lambda p: p.set_page_mode(), "SetPageMode", ()),
    (lambda p: p.page_set_standard_mode(), "Page_SetStandardMode", ()),
    (lambda p: p.page_clear_current_data(), "Page_ClearCurrentData", ()),
    (lambda p: p.page_print(), "Page_Print", ()),
    (lambda p: p.page_print_standard_mode(), "Page_Print_StandardMode", ()),
    (lambda p: p.page_set_area(1, 2, 3, 4), "Page_SetArea", (1, 2, 3, 4)),
    (lambda p: p.page_set_direction(3), "Page_SetDirection", (3,)),
    (lambda p: p.page_set_position(1, 2), "Page_SetPosition", (1, 2)),
    (lambda p: p.page_newline(), "Page_Newline", ()),
    (lambda p: p.page_dot_feed(3), "Page_DotFeed", (3,)),
    (lambda p: p.page_line_feed(3), "Page_LineFeed", (3,)),
    (lambda p: p.page_draw_box(1, 2, 3, 4, 5), "Page_DrawBox", (1, 2, 3, 4, 5)),
    (lambda p: p.page_draw_line(1, 2, 3, 4, 5), "Page_DrawLine", (1, 2, 3, 4, 5)),
    (lambda p: p.page_draw_ellipse(1, 2, 3, 4, 5), "Page_DrawEllipse", (1, 2, 3, 4, 5)),
    (
        lambda p: p.one_dimension_barcode(73, "d", width=2, height=80, hri=True),
        "OneDimensionBarcodeSaveSpool",
        (73, 2, 80, 1, "d"),
    ),
    (
        lambda p: p.barcode_on_page(73, "d", 384, 100, x=8, width=3, height=80, hri=True),
        "BarcodeSaveSpool",
        (73, 3, 80, 1, "d", 384, 100, 8),
    ),
    (lambda p: p.pdf417("d", 1, 2, 3, 4, True), "PDF417SaveSpool", (1, 2, 3, 4, "d", 1)),
    (lambda p: p.truncated_pdf417("d", 1, 2, 3, 4, True), "TruncatedPDF417SaveSpool", (1, 2, 3, 4, "d", 1)),
    (lambda p: p.micro_pdf417("d", 1, 2, 3, 4, True), "MicroPDF417SaveSpool", (1, 2, 3, 4, "d", 1)),
    (lambda p: p.qr_code("d", 4, "L", 5), "QRCodeSaveSpool", (4, 0x4C, 5, "d")),
    (lambda p: p.data_matrix("d", 1, 2, 3), "DataMatrixSaveSpool", (1, 2, 3, "d")),
    (lambda p: p.maxicode("d", 5), "MaxicodeSaveSpool", (5, "d")),
    (lambda p: p.gs1_databar("d", 6, 4), "GS1DatabarSaveSpool", (6, 4, "d")),
    (lambda p: p.set_macro_start(), "SetMarco_Start", ()),
    (lambda p: p.set_macro_end(), "SetMacro_End", ()),
    (lambda p: p.set_macro_font_size_font_table(1, 2), "SetMacro_FontSize_FontTable", (1, 2)),
    (lambda p: p.initialize_macro(), "Initialize_Macro", ()),
    (lambda p: p.select_for_ttf("f"), "SelectForTTF", ("f",)),
    (lambda p: p.set_font_for_ttf("f"), "SetFontForTTF", ("f",)),
    (lambda p: p.print_spool_for_ttf("t", 1, 2), "PrintSpoolForTTF", ("t", 1, 2)),
    (lambda p: p.bmp("f", 1, 2), "BmpSaveSpool", ("f", 1, 2)),
    (lambda p: p.normal_bmp("f"), "NormalBmpSaveSpool", ("f",)),
    (lambda p: p.compressed_bmp("f"), "CompressedBmpSaveSpool", ("f",)),
    (lambda p: p.load_logo(3), "LoadLogoSaveSpool", (3,)),
    (lambda p: p.get_printer_status(400), "GetPrinterStatus", (400,)),
    (lambda p: p.get_printer_status_ex(400), "GetPrinterStatusEX", (400,)),
    (lambda p: p.get_printer_model_name(), "GetPrinterModelName", ()),
    (lambda p: p.get_firmware_version(), "GetFirmwareVersion", ()),
    (lambda p: p.set_print_out_status(True), "Set_PrintOutStatus", (1,)),
    (lambda p: p.enter_msr_mode(4), "EnterMSRMode", (4,)),
    (lambda p: p.cancel_msr_mode(), "CancelMSRMode", ()),
    (lambda p: p.card_read(True), "CardRead", (1,)),
    (lambda p: p.card_read_m(True), "CardRead_M", (1,)),
    (lambda p: p.card_cancel(), "CardCancel", ()),
    (lambda p: p.secured_card_cancel(), "SecuredCardCancel", ()),
    (lambda p: p.enter_scr_mode(), "EnterSCRMode", ()),
    (lambda p: p.cancel_scr_mode(), "CancelSCRMode", ()),
    (lambda p: p.secured_card_command(b"xyz"), "SecuredCardCommend", (b"xyz",)),
    (lambda p: p.set_terminal_id("12345678"), "SetTermialID", ("12345678",)),
    (
        lambda p: p.set_payment_req(True, "1", "20261121", "094200"),
        "SetPaymentReq",
        (1, "1", "20261121", "094200"),
    ),
    (lambda p: p.close(), "ClosePrinter", ()),
]

# Reached otherwise than by a row: the connects below; a second name; and with a link, in test_printer.py.
REACHED_ELSEWHERE = {
    "InitPrinter",
    "ConnectSerialPrinter",
    "ConnectSerialPrinterEx",
    "InitWlanPrinter",
    "ConnectWirelessPrinter",
    "ClosePrinterConnection",
}


class Methods(unittest.TestCase):
    def test_every_method_calls_its_function_with_the_arguments_in_their_places(self) -> None:
        for method, function, arguments in ROWS:
            with self.subTest(function):
                printer = OpenPrinter()
                method(printer)
                self.assertEqual(printer.calls(), [(function, arguments)])
                printer.close()

    def test_every_printer_function_is_reached(self) -> None:
        reached = {function for _, function, _ in ROWS} | REACHED_ELSEWHERE
        self.assertEqual(reached, set(declarations.PRINTER_FUNCTIONS))

    def test_every_method_is_tried(self) -> None:
        tried = "".join(inspect.getsource(row[0]) for row in ROWS)
        host = {"link_report", "set_ansi_code_page", "set_send_timeout"}
        links = {"set_notification_handler", "notifications"}
        for name, _ in inspect.getmembers(Printer, inspect.isfunction):
            if not name.startswith("_") and name not in host | links:
                self.assertIn(f"p.{name}(", tried)


class RecordedConnects(unittest.TestCase):
    def connected(self, connect: Callable[[], Printer]) -> Call:
        library = RecordingLibrary()
        with patch("nadrel.connection.load", return_value=library):
            connect().close()
        return library.functions.calls[0]

    def test_a_serial_printer_goes_on_trying(self) -> None:
        self.assertEqual(
            self.connected(lambda: SerialPrinter("/dev/a", 9600, open_timeout_ms=400, framed=True)),
            ("ConnectSerialPrinter", ("/dev/a", 9600, 400, 1)),
        )

    def test_a_serial_printer_tries_once(self) -> None:
        self.assertEqual(
            self.connected(lambda: SerialPrinter("/dev/a", 9600, open_timeout_ms=None)),
            ("InitPrinter", ("/dev/a", 9600, 0)),
        )

    def test_a_serial_printer_takes_line_settings(self) -> None:
        self.assertEqual(
            self.connected(
                lambda: SerialPrinter("/dev/a", byte_size=7, stop_bits=StopBits.TWO, parity=Parity.EVEN)
            ),
            ("ConnectSerialPrinterEx", (b"/dev/a", 115200, 7, 2, 2, 2000, 0)),
        )

    def test_a_tcp_printer_goes_on_trying(self) -> None:
        self.assertEqual(
            self.connected(lambda: TcpPrinter("192.0.2.7", 9101, timeout_ms=600)),
            ("ConnectWirelessPrinter", ("192.0.2.7", 9101, 600, 0)),
        )

    def test_a_tcp_printer_keeps_the_spool(self) -> None:
        self.assertEqual(
            self.connected(lambda: TcpPrinter("192.0.2.7", keep_spool=True, framed=True)),
            ("InitWlanPrinter", ("192.0.2.7", 9100, 5000, 1)),
        )

    def test_line_settings_and_one_attempt_do_not_go_together(self) -> None:
        with self.assertRaisesRegex(ValueError, "one attempt"):
            self.connected(lambda: SerialPrinter("/dev/a", byte_size=7, open_timeout_ms=None))


if __name__ == "__main__":
    unittest.main()
