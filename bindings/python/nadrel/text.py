"""Text, feeds, cutting and black marks."""

from enum import IntEnum

from .calls import Calls


class Alignment(IntEnum):
    """Where a line stands on the paper."""

    LEFT = 0
    CENTRE = 1
    RIGHT = 2


class Text(Calls):
    """Text and its formatting. An argument out of range leaves the command out and is not reported."""

    def text(self, text: str) -> None:
        """Append text as it is, without a line feed. Only the low 8 bits of its length in bytes count: 256
        bytes append nothing, 300 append their first 44 (C: TextSaveSpool)."""
        self._do("TextSaveSpool", text)

    def print_data(self) -> None:
        """Print the line and feed one line (C: PrintData)."""
        self._do("PrintData")

    def print_dot_feed(self, dots: int) -> None:
        """Print and feed 0 to 255 dots (C: PrintDotFeed)."""
        self._do("PrintDotFeed", dots)

    def print_line_feed(self, lines: int) -> None:
        """Print and feed 0 to 255 lines (C: PrintLineFeed)."""
        self._do("PrintLineFeed", lines)

    def init_printer_status(self) -> None:
        """Put the printer back to its defaults and the library to standard mode (C: InitPrinterStatus)."""
        self._do("InitPrinterStatus")

    def set_print_position(self, x: int, y: int) -> int:
        """Set the print position in dots; the new spool length in bytes comes back (C: SetPrintPosition)."""
        return self._result("SetPrintPosition", x, y)

    def set_abs_position(self, dots: int) -> None:
        """Set the horizontal print position in dots from the left edge (C: SetAbsPosition)."""
        self._do("SetAbsPosition", dots)

    def set_line_space(self, dots: int) -> None:
        """Set the line spacing, 0 to 255 dots (C: SetLineSpace)."""
        self._do("SetLineSpace", dots)

    def set_char_space(self, dots: int) -> None:
        """Set the space to the right of each character, 0 to 255 dots (C: SetCharSpace)."""
        self._do("SetCharSpace", dots)

    def set_char_code_table(self, table: int, kind: int | None = None) -> None:
        """Choose the printer's character code table. kind 0 or 1 lets tables 0 to 5 and 255 through, kind 2
        tables 0 to 50 and 255 (C: SetCharCodeTable); without a kind the low byte of any table goes out
        (C: SetCharCodeTableEX). What text is converted to, set_ansi_code_page says."""
        if kind is None:
            self._do("SetCharCodeTableEX", table)
        else:
            self._do("SetCharCodeTable", table, kind)

    def set_font_size(self, size: int) -> None:
        """Choose one of the printer's font sizes, 0 to 2 (C: SetFontSize)."""
        self._do("SetFontSize", size)

    def set_text_style(
        self, underline: int = 0, bold: bool = False, width: int = 0, height: int = 0, reverse: bool = False
    ) -> None:
        """Set the whole style. underline: 0 to 2 dots. width, height: magnification minus one, 0 to 7.
        reverse: white on black (C: SetTextStyle)."""
        self._do("SetTextStyle", underline, bold, width, height, reverse)

    def set_upside_down(self, on: bool) -> None:
        """Print upside down, or not (C: SetUpsideDown)."""
        self._do("SetUpsideDown", on)

    def set_text_alignment(self, alignment: int) -> None:
        """Align the following lines: an Alignment (C: SetTextAlignment)."""
        self._do("SetTextAlignment", alignment)

    def cut_paper(self, partly: bool = False) -> None:
        """Cut the paper (C: CutPaper)."""
        self._do("CutPaper", partly)

    def feed_to_mark(self) -> None:
        """Feed to the black mark (C: FeedToMark)."""
        self._do("FeedToMark")

    def set_position_from_mark(self, dots: int) -> None:
        """Say where printing starts, in dots from the black mark (C: SetPositionFromMark)."""
        self._do("SetPositionFromMark", dots)

    def set_mark_use_mode(self, on: bool) -> None:
        """Sense black marks, or not (C: SetMarkUseMode)."""
        self._do("SetMarkUseMode", on)
