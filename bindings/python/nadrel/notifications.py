"""What the printer says, copied while the library's buffers stand, for a handler or an iterator."""

import atexit
import ctypes
import logging
import queue
import weakref
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from enum import IntEnum
from types import TracebackType
from typing import Any

from .declarations import NotificationHandler

_LOG = logging.getLogger("nadrel")
_LONGEST_REPLY = 2048  # bytes
_MOST_WAITING = 10000  # notifications


class Kind(IntEnum):
    """The kinds of notifications."""

    REPLY = ord("D")  #: model name, firmware version, or a reply that begins with 1B, 02 or a framed 'D'
    STATUS = ord("S")
    PRINT_OUT = ord("T")
    CARD = ord("N")
    ACK = 0x06
    NAK = 0x15
    CAN = 0x18
    ETX = 0x03
    EOT = 0x04


_WITH_DATA = frozenset((Kind.REPLY, Kind.STATUS, Kind.PRINT_OUT, Kind.CARD))


@dataclass(frozen=True)
class Notification:
    """One thing that the printer said.

    kind: a Kind, or a number that is none. data: a copy of the reply's bytes, empty where it has none.
    status: the status byte of a reply to a status query, else None; its bits are the printer's.
    """

    kind: int
    data: bytes = b""
    status: int | None = None

    @classmethod
    def from_message(cls, w_param: int, l_param: int) -> "Notification":
        """Copy what a message NADREL_PRT_OK says.

        To be called in the handler, or on Windows in the window procedure, of the process that holds the
        link: the bytes at l_param are overwritten by the next reply.
        """
        kind = w_param >> 16
        if kind == Kind.STATUS and 0 <= l_param <= 0xFF:
            return cls(Kind.STATUS, status=l_param)
        if kind not in _WITH_DATA or l_param == 0:
            return cls(_known(kind))
        data = ctypes.string_at(l_param, min(w_param & 0xFFFF, _LONGEST_REPLY))
        status = data[0] if kind == Kind.STATUS and data else None
        return cls(_known(kind), data, status)


def _known(kind: int) -> int:
    try:
        return Kind(kind)
    except ValueError:
        return kind


Handler = Callable[[Notification], object]


class NotificationStream(Iterator[Notification]):
    """Notifications in the order in which the printer said them, from the moment the stream was made.

    Iterating ends when nothing has come for timeout_ms milliseconds (None: no limit), when the printer is
    closed, or when the stream is. What was told before is still given then. 10000 notifications wait at
    most; `dropped` counts those that came while so many did.
    """

    def __init__(self, timeout_ms: int | None = None) -> None:
        self.dropped = 0
        self._timeout_ms = timeout_ms
        # Takes no lock that a printer which is collected meanwhile could wait for. None is the end.
        self._waiting: queue.SimpleQueue[Notification | None] = queue.SimpleQueue()
        self._ended = False

    def __enter__(self) -> "NotificationStream":
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __iter__(self) -> "NotificationStream":
        return self

    def __next__(self) -> Notification:
        notification = self.get(self._timeout_ms)
        if notification is None:
            self.close()
            raise StopIteration
        return notification

    def get(self, timeout_ms: int | None = None) -> Notification | None:
        """Wait for the next one, at most timeout_ms milliseconds (None: no limit); None when none came."""
        try:
            notification = self._waiting.get(timeout=None if timeout_ms is None else timeout_ms / 1000)
        except queue.Empty:
            return None
        if notification is None:
            self._waiting.put(None)
        return notification

    def put(self, notification: Notification) -> None:
        """Add one; it is dropped when the stream has ended or too many wait."""
        if self._ended:
            return
        if self._waiting.qsize() >= _MOST_WAITING:
            self.dropped += 1
        else:
            self._waiting.put(notification)

    def close(self) -> None:
        """End the stream: who waits for a notification waits no longer."""
        if not self._ended:
            self._ended = True
            self._waiting.put(None)


class Dispatcher:
    """Takes the notifications of a loaded library and hands them on; one for each library, for good.

    The C callback lives as long as the process, so that the library never calls one that has gone.
    """

    def __init__(self, functions: Any) -> None:
        self.handler: Handler | None = None
        # Replaced, never changed: the library's thread reads it without a lock.
        self._streams: tuple[weakref.ref[NotificationStream], ...] = ()
        self._callback = NotificationHandler(self._receive)
        functions.SetNotificationHandler(self._callback, None)
        # A thread that enters the interpreter when that is ending would take the process down.
        atexit.register(functions.SetNotificationHandler, NotificationHandler(0), None)

    def add(self, stream: NotificationStream) -> None:
        """Have a stream told, as long as somebody holds it."""
        held = (known for known in self._streams if known() is not None)
        self._streams = (*held, weakref.ref(stream))

    def _receive(self, _message: int, w_param: int, l_param: int, _context: int | None) -> None:
        notification = Notification.from_message(w_param, l_param)
        for known in self._streams:
            stream = known()
            if stream is not None:
                stream.put(notification)
        handler = self.handler
        if handler is not None:
            _call(handler, notification)


def _call(handler: Handler, notification: Notification) -> None:
    try:
        handler(notification)
    except BaseException:  # the library's thread has nobody above it who could take it
        _LOG.exception("a notification handler failed")
