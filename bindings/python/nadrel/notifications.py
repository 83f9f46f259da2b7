"""What the printer says, copied while the library's buffers stand, for a handler or an iterator."""

import atexit
import ctypes
import logging
import threading
import weakref
from collections import deque
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
        self._changed = threading.Condition()
        self._waiting: deque[Notification] = deque()
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
        seconds = None if timeout_ms is None else timeout_ms / 1000
        with self._changed:
            self._changed.wait_for(lambda: self._waiting or self._ended, seconds)
            return self._waiting.popleft() if self._waiting else None

    def put(self, notification: Notification) -> None:
        """Add one; it is dropped when the stream has ended or too many wait."""
        with self._changed:
            if self._ended:
                return
            if len(self._waiting) >= _MOST_WAITING:
                self.dropped += 1
                return
            self._waiting.append(notification)
            self._changed.notify()

    def close(self) -> None:
        """End the stream: who waits for a notification waits no longer."""
        with self._changed:
            self._ended = True
            self._changed.notify_all()


class Dispatcher:
    """Takes the notifications of a loaded library and hands them on; one for each library, for good.

    The C callback lives as long as the process, so that the library never calls one that has gone.
    """

    def __init__(self, functions: Any) -> None:
        self.handler: Handler | None = None
        # A collection that runs while the lock is held may close a printer, which asks for the lock again.
        self._lock = threading.RLock()
        self._streams: weakref.WeakSet[NotificationStream] = weakref.WeakSet()
        self._callback = NotificationHandler(self._receive)
        functions.SetNotificationHandler(self._callback, None)
        # A thread that enters the interpreter when that is ending would take the process down.
        atexit.register(functions.SetNotificationHandler, NotificationHandler(0), None)

    def add(self, stream: NotificationStream) -> None:
        """Have a stream told, as long as somebody holds it."""
        with self._lock:
            self._streams.add(stream)

    def _receive(self, _message: int, w_param: int, l_param: int, _context: int | None) -> None:
        notification = Notification.from_message(w_param, l_param)
        with self._lock:
            streams = list(self._streams)
        for stream in streams:
            stream.put(notification)
        handler = self.handler
        if handler is not None:
            _call(handler, notification)


def _call(handler: Handler, notification: Notification) -> None:
    try:
        handler(notification)
    except BaseException:  # the library's thread has nobody above it who could take it
        _LOG.exception("a notification handler failed")
