"""A TCP peer that keeps what it is sent, byte by byte."""

import socket
import threading
from contextlib import suppress
from types import TracebackType

QUERY_FRAME = bytes.fromhex("00 C0 51 C1")
FRAMED_STATUS = bytes.fromhex("C0 53 40")
_PATIENCE = 30  # seconds


class Peer:
    """Takes one host at a time and answers the query frame of a framed link unless told not to."""

    host = "127.0.0.1"

    def __init__(self) -> None:
        self.answers_queries = True
        self._changed = threading.Condition()
        self._received = b""
        self._connection: socket.socket | None = None
        self._endless = b""
        self._listener = socket.create_server((self.host, 0))
        self.port: int = self._listener.getsockname()[1]
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def __enter__(self) -> "Peer":
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self._listener.shutdown(socket.SHUT_RDWR)
        self._listener.close()
        with self._changed:
            if self._connection is not None:
                with suppress(OSError):  # the host may have left
                    self._connection.shutdown(socket.SHUT_RDWR)
        self._thread.join()

    def take(self, count: int) -> bytes:
        """Wait for so many bytes; all that have come since the last call come back."""
        with self._changed:
            self._changed.wait_for(lambda: len(self._received) >= count, _PATIENCE)
            taken, self._received = self._received, b""
            return taken

    def take_until(self, end: bytes) -> bytes:
        """Wait for bytes that are the end; what came before them since the last call comes back."""
        with self._changed:
            self._changed.wait_for(lambda: end in self._received, _PATIENCE)
            taken, found, self._received = self._received.partition(end)
            assert found, f"the end did not come, but {taken!r}"
            return taken

    def send(self, data: bytes) -> None:
        """Send to the host that is connected."""
        with self._changed:
            self._changed.wait_for(lambda: self._connection is not None, _PATIENCE)
            assert self._connection is not None, "no host has connected"
            self._connection.sendall(data)

    def talk(self, data: bytes) -> None:
        """From now on send the bytes to every host, over and over until it leaves."""
        self._endless = data

    def _serve(self) -> None:
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            self._keep(connection)
            with connection:
                self._talk(connection)
                self._read(connection)
                self._keep(None)

    def _talk(self, connection: socket.socket) -> None:
        try:
            while self._endless:
                connection.sendall(self._endless)
        except OSError:
            return

    def _read(self, connection: socket.socket) -> None:
        while data := self._receive(connection):
            with self._changed:
                self._received += data
                self._changed.notify_all()
            if data == QUERY_FRAME and self.answers_queries:
                connection.sendall(FRAMED_STATUS)

    def _receive(self, connection: socket.socket) -> bytes:
        try:
            return connection.recv(4096)
        except OSError:
            return b""

    def _keep(self, connection: socket.socket | None) -> None:
        with self._changed:
            self._connection = connection
            self._changed.notify_all()
