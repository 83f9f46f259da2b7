"""Spool and printing."""

from .calls import Calls


class Spool(Calls):
    """The spool that commands are appended to, and its way to the printer."""

    def append(self, data: bytes) -> int:
        """Append raw bytes; the new spool length in bytes comes back (C: ControlCommand)."""
        return self._result("ControlCommand", data, len(data))

    def append_run(self, text: str, font: int = 0, bold: bool = False) -> int:
        """Append text with its font, 0 to 3, and emphasis, without a line feed; the spool may reach 9999
        bytes. The new spool length in bytes comes back (C: SaveSpool)."""
        return self._result("SaveSpool", text, font, bold)

    def convert(self, text: str) -> bytes:
        """The text in the ANSI code page, as every function that takes text sends it; at most 2 bytes for
        each UTF-16 unit (C: U2A)."""
        converted = self._call("U2A", (text,))
        return bytes(converted or b"")

    def clear_spool(self) -> None:
        """Empty the spool (C: ClearSpool)."""
        self._do("ClearSpool")

    def print_spool(self, clear: bool = True) -> None:
        """Send the whole spool, and empty it unless told not to. What became of the bytes on the link,
        link_report knows (C: PrintSpool)."""
        self._result("PrintSpool", clear)

    @property
    def port_handle(self) -> int:
        """The open serial port: the file descriptor, on Windows the HANDLE; -1 when there is none. It stays
        the library's (C: GetPortHandle)."""
        return int(self._call("GetPortHandle", ()))
