"""What a host on Linux can set and learn besides."""

import ctypes
from dataclasses import dataclass

from .calls import Calls
from .declarations import LinkReport as RawReport


@dataclass(frozen=True)
class LinkReport:
    """What became of the bytes since the last connect.

    last_error: errno of the last write that failed, 0 when none has. error_count: writes that failed.
    notifications_posted: a number of notifications. The rest are bytes: that were to be written, that the
    system took, that the printer sent, and those of them that found the receive queue full.
    """

    last_error: int
    error_count: int
    notifications_posted: int
    bytes_asked: int
    bytes_taken: int
    bytes_received: int
    bytes_dropped: int


class Host(Calls):
    """Linux only: on Windows these functions raise NotImplementedError."""

    def set_ansi_code_page(self, code_page: int) -> None:
        """Set the code page that text is converted to, 1252 until set; it stands for the whole process
        (C: SetAnsiCodePage)."""
        self._require_linux()
        self._result("SetAnsiCodePage", code_page)

    def link_report(self) -> LinkReport:
        """What became of the bytes since the last connect (C: GetLinkReport)."""
        self._require_linux()
        raw = RawReport(size=ctypes.sizeof(RawReport))
        self._result("GetLinkReport", ctypes.byref(raw))
        return LinkReport(
            raw.lastError,
            raw.errorCount,
            raw.notificationsPosted,
            raw.bytesAsked,
            raw.bytesTaken,
            raw.bytesReceived,
            raw.bytesDropped,
        )

    def set_send_timeout(self, timeout_ms: int) -> None:
        """Limit how long a send over TCP may go without progress, in milliseconds; 0 is no limit. It stands
        for the whole process (C: SetSendTimeout)."""
        self._require_linux()
        self._result("SetSendTimeout", timeout_ms)

    def _require_linux(self) -> None:
        if self._library.dispatcher is None:
            raise NotImplementedError("the library has this function on Linux only")
