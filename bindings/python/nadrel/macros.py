"""Macros that the printer keeps."""

from .calls import Calls


class Macros(Calls):
    """Macros: commands that the printer stores."""

    def set_macro_start(self) -> None:
        """Mark where the macro's commands begin (C: SetMarco_Start)."""
        self._do("SetMarco_Start")

    def set_macro_end(self) -> None:
        """Make what was appended since the mark a macro (C: SetMacro_End)."""
        self._do("SetMacro_End")

    def set_macro_font_size_font_table(self, size: int, table: int) -> None:
        """A macro that sets font size, 0 to 3, and code table, 0 to 50 or 255; else nothing
        (C: SetMacro_FontSize_FontTable)."""
        self._do("SetMacro_FontSize_FontTable", size, table)

    def initialize_macro(self) -> None:
        """Clear the printer's macro (C: Initialize_Macro)."""
        self._do("Initialize_Macro")
