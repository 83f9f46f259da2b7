"""A virtual printer that runs as long as a `with` block."""

import os
import subprocess
import tempfile
from pathlib import Path
from types import TracebackType

PROGRAM = os.environ.get("NADREL_PRINTER_PROGRAM", "nadrel-printer")


class VirtualPrinter:
    """A nadrel-printer on a pseudo-terminal and a TCP port. Once it ended, `listing` is what it printed."""

    def __init__(self, *options: str) -> None:
        self.listing = ""
        self._folder = tempfile.TemporaryDirectory()
        self.folder = Path(self._folder.name)
        command = [PROGRAM, "--serial", "--tcp", "0", "--listing", str(self.folder / "listing"), *options]
        self._process = subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, cwd=self.folder
        )
        self.serial = self._announced("serial ")
        self.host, port = self._announced("tcp ").rsplit(":", 1)
        self.port = int(port)

    def __enter__(self) -> "VirtualPrinter":
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def close(self) -> None:
        """End the printer and remove its files."""
        self.quit()
        self._folder.cleanup()

    def say(self, line: str) -> None:
        """Give the printer a line on its standard input."""
        assert self._process.stdin
        self._process.stdin.write(line + "\n")
        self._process.stdin.flush()

    def quit(self) -> str:
        """End the printer; its listing comes back."""
        if self._process.poll() is None:
            self._process.communicate("quit\n", timeout=60)
            self.listing = (self.folder / "listing").read_text()
        return self.listing

    def _announced(self, link: str) -> str:
        assert self._process.stdout
        line = self._process.stdout.readline()
        assert line.startswith(link), f"the virtual printer said {line!r}"
        return line.removeprefix(link).strip()
