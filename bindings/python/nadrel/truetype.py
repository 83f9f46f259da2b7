"""TrueType fonts that the printer holds."""

from .calls import Calls


class TrueType(Calls):
    """Text in the printer's TrueType fonts."""

    def select_for_ttf(self, name: str) -> int:
        """Select a font by its file name; the new spool length in bytes comes back (C: SelectForTTF)."""
        return self._result("SelectForTTF", name)

    def set_font_for_ttf(self, name: str) -> None:
        """Select a font by its file name (C: SetFontForTTF)."""
        self._do("SetFontForTTF", name)

    def print_spool_for_ttf(self, text: str, p1: int, p2: int) -> int:
        """Print text of any length with the selected font. p1, p2: the printer's, 0 to 255. The new spool
        length in bytes comes back (C: PrintSpoolForTTF)."""
        return self._result("PrintSpoolForTTF", text, p1, p2)
