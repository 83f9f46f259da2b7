"""Printers: a link from its opening to its closing."""

import os
import warnings
import weakref
from collections.abc import Iterator
from contextlib import contextmanager
from enum import IntEnum
from types import TracebackType
from typing import Self

from .barcodes import Barcodes
from .card_readers import CardReaders
from .errors import check
from .host import Host
from .library import Library, load
from .macros import Macros
from .notifications import Dispatcher, Handler, NotificationStream
from .page_mode import PageMode
from .payment import Payment
from .raster import Raster
from .spool import Spool
from .status import Status
from .text import Text
from .truetype import TrueType


class StopBits(IntEnum):
    """Stop bits of a serial line."""

    ONE = 0
    ONE_AND_A_HALF = 1
    TWO = 2


class Parity(IntEnum):
    """Parity of a serial line."""

    NONE = 0
    ODD = 1
    EVEN = 2
    MARK = 3
    SPACE = 4


class Printer(Spool, Text, PageMode, Barcodes, Macros, TrueType, Raster, Status, CardReaders, Payment, Host):
    """A printer on an open link; SerialPrinter and TcpPrinter open one.

    A context manager: it closes the link at its end. What was appended and not printed is then lost. The
    library has one link a process, and one spool: a second printer is refused while one is open. Use a
    printer from one thread at a time; a notification handler may use it while no other thread does.
    """

    def __init__(self, library: str | os.PathLike[str] | None, handler: Handler | None) -> None:
        self._library: Library = load(library)
        self._handler = handler
        self._streams: weakref.WeakSet[NotificationStream] = weakref.WeakSet()
        if handler is not None:
            self._dispatcher()

    def _connect(self, function: str, *arguments: object) -> None:
        with self._handler_while_connecting():
            check(function, getattr(self.functions, function)(*arguments))
        self._open = True
        if self._handler is not None:
            self.set_notification_handler(self._handler)

    @contextmanager
    def _handler_while_connecting(self) -> Iterator[None]:
        """The printer may answer before the connect returns. A handler that is already there belongs to a
        printer that is open, so that this connect will be refused."""
        dispatcher = self._library.dispatcher
        if self._handler is None or dispatcher is None or dispatcher.handler is not None:
            yield
            return
        dispatcher.handler = self._handler
        try:
            yield
        except BaseException:
            dispatcher.handler = None
            raise

    def __enter__(self) -> Self:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __del__(self) -> None:
        if self._open:
            warnings.warn(f"{self!r} was not closed", ResourceWarning, source=self)
            self.close()

    @property
    def closed(self) -> bool:
        """Whether close has been called."""
        return not self._open

    def close(self) -> None:
        """Close the link. When it returns, no handler runs for it any more, but for one that is itself the
        caller, and its notification streams have ended. A second call does nothing
        (C: ClosePrinter, of which ClosePrinterConnection is another name)."""
        if not self._open:
            return
        self._open = False
        self.functions.ClosePrinter()
        self._remove_handler()
        for stream in list(self._streams):
            stream.close()

    def set_notification_handler(self, handler: Handler | None) -> None:
        """Have a function called with each Notification, on a thread of the library's; None: no function. It
        stays set until the printer is closed. What it raises is logged under the name "nadrel" and goes no
        further (C: SetNotificationHandler)."""
        dispatcher = self._dispatcher()
        self._handler = dispatcher.handler = handler

    def notifications(self, timeout_ms: int | None = None) -> NotificationStream:
        """Notifications from now on, to be iterated over or asked for one at a time. Iterating ends when
        none has come for timeout_ms milliseconds (None: no limit), or with the link."""
        stream = NotificationStream(timeout_ms)
        self._streams.add(stream)
        self._dispatcher().add(stream)
        if self.closed:
            stream.close()
        return stream

    def _remove_handler(self) -> None:
        dispatcher = self._library.dispatcher
        # By now another printer may be open and have set its own.
        if dispatcher is not None and dispatcher.handler is self._handler:
            dispatcher.handler = None
        self._handler = None

    def _dispatcher(self) -> Dispatcher:
        if self._library.dispatcher is None:
            raise NotImplementedError(
                "on Windows notifications are window messages: pass wParam and lParam of NADREL_PRT_OK to "
                "Notification.from_message in a window procedure"
            )
        return self._library.dispatcher


class SerialPrinter(Printer):
    """A printer on a serial port."""

    def __init__(
        self,
        path: str,
        baud_rate: int = 115200,
        *,
        byte_size: int = 8,
        stop_bits: StopBits = StopBits.ONE,
        parity: Parity = Parity.NONE,
        open_timeout_ms: int | None = 2000,
        framed: bool = False,
        handler: Handler | None = None,
        library: str | os.PathLike[str] | None = None,
    ) -> None:
        """Open the port, without flow control.

        path: /dev/ttyUSB0, on Windows COM3:. baud_rate: bits a second. byte_size: 5 to 8 bits.
        open_timeout_ms: milliseconds to go on trying, an attempt every 200 (C: ConnectSerialPrinter, and
        ConnectSerialPrinterEx for other line settings than 8 bits, no parity, one stop bit, which takes an
        ASCII path); None: one attempt at once (C: InitPrinter, for those settings only). framed: use the
        framed form, which the printer must answer. handler: see set_notification_handler; it is also told
        what comes while the link is being opened. library: the library's file, see load.
        """
        super().__init__(library, handler)
        usual = (byte_size, stop_bits, parity) == (8, StopBits.ONE, Parity.NONE)
        if open_timeout_ms is None:
            if not usual:
                raise ValueError("one attempt at once is for 8 bits, no parity and one stop bit")
            self._connect("InitPrinter", path, baud_rate, framed)
        elif usual:
            self._connect("ConnectSerialPrinter", path, baud_rate, open_timeout_ms, framed)
        else:
            settings = (byte_size, stop_bits, parity)
            port = _ascii(path)
            self._connect("ConnectSerialPrinterEx", port, baud_rate, *settings, open_timeout_ms, framed)


class TcpPrinter(Printer):
    """A printer on the network."""

    def __init__(
        self,
        host: str,
        port: int = 9100,
        *,
        timeout_ms: int = 5000,
        keep_spool: bool = False,
        framed: bool = False,
        handler: Handler | None = None,
        library: str | os.PathLike[str] | None = None,
    ) -> None:
        """Connect.

        host: an IPv4 or IPv6 address or a host name. timeout_ms: milliseconds to go on trying, an attempt
        every 200 (C: ConnectWirelessPrinter). keep_spool: what the spool holds survives; then there is one
        attempt of timeout_ms / 1000 whole seconds (C: InitWlanPrinter). framed, handler, library: as for
        SerialPrinter.
        """
        super().__init__(library, handler)
        function = "InitWlanPrinter" if keep_spool else "ConnectWirelessPrinter"
        self._connect(function, host, port, timeout_ms, framed)


def _ascii(path: str) -> bytes:
    name = path.encode("ascii")
    if 0 in name:
        raise ValueError("the path holds a null character")
    return name
