"""Runs the command lines of a document, with a virtual printer in the place of the real one."""

import os
import re
import signal
import socket
import subprocess
import tempfile
import threading
from pathlib import Path
from types import TracebackType

import markdown
from virtual_printer import VirtualPrinter

PROGRAMS = Path(os.environ.get("NADREL_PROGRAMS", "."))  # the folder that nadrel and nadrel-printer are in
_PATIENCE = 120  # seconds
_NOT_LINKED = {"build", ".git"}
_SET_FOR_TESTS = {"NADREL_LIBRARY", "PYTHONPATH"}


class Background:
    """A program that runs until it is interrupted."""

    def __init__(self, line: str, folder: Path, environment: dict[str, str], says: list[str]) -> None:
        self._line = line
        self._missing = list(says)
        self._announced = threading.Event()
        self._said = ""
        self._process = subprocess.Popen(
            ["bash", "-c", f"exec {line}"],
            cwd=folder,
            env=environment,
            text=True,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
        )
        self._reader = threading.Thread(target=self._read)
        self._reader.start()
        assert self._announced.wait(_PATIENCE) and not self._missing, f"{line}: said only {self._said!r}"

    def stop(self) -> None:
        """Interrupt it as Ctrl-C does; it has to end well."""
        self._process.send_signal(signal.SIGINT)
        status = self._process.wait(_PATIENCE)
        self._reader.join()
        assert self._process.stdout
        self._process.stdout.close()
        assert status == 0, f"{self._line}: ended with {status} and {self._said!r}"

    def _read(self) -> None:
        assert self._process.stdout
        for text in self._process.stdout:
            self._said += text
            self._missing = [start for start in self._missing if not text.startswith(start)]
            if not self._missing:
                self._announced.set()
        self._announced.set()


class Shell:
    """A folder that looks like the project's, with a virtual printer at /dev/ttyUSB0 and 192.0.2.7:9100."""

    def __enter__(self) -> "Shell":
        self._printer = VirtualPrinter()
        self._temporary = tempfile.TemporaryDirectory()
        self.folder = Path(self._temporary.name)
        self._background: list[Background] = []
        self._substitutions = {
            "/dev/ttyUSB0": self._printer.serial,
            "192.0.2.7:9100": f"{self._printer.host}:{self._printer.port}",
            "9101": str(_free_port()),
            "/usr/share/doc/nadrel-tools/examples": "examples",
            "/usr/lib/x86_64-linux-gnu": str(PROGRAMS),
        }
        self._link_the_project()
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.end_block()
        self._printer.close()
        self._temporary.cleanup()

    @property
    def printed(self) -> str:
        """What the virtual printer was sent, once no more will be."""
        return self._printer.quit()

    def write(self, name: str, block: markdown.Block) -> None:
        """Write a block into a file of the folder."""
        (self.folder / name).write_text(self.substituted("\n".join(block.lines)) + "\n")

    def run(self, line: str) -> str:
        """Run a command line, which has to succeed; what it said comes back. One that would run for ever is
        started, awaited, and runs to the end of the block, but for one that only listens."""
        line = self.substituted(line)
        announcements = _announcements(line)
        if announcements:
            self._background.append(Background(line, self.folder, self._environment(), announcements))
            if line.startswith("nadrel listen"):
                self.end_block()
            return ""
        return self._run_to_its_end(line)

    def end_block(self) -> None:
        """Interrupt what still runs."""
        while self._background:
            self._background.pop().stop()

    def substituted(self, text: str) -> str:
        """The text with the addresses of this machine."""
        for documented, here in self._substitutions.items():
            text = text.replace(documented, here)
        return text

    def _run_to_its_end(self, line: str) -> str:
        ended = subprocess.run(
            ["bash", "-c", line],
            cwd=self.folder,
            env=self._environment(),
            text=True,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=_PATIENCE,
        )
        assert ended.returncode == 0, f"{line}: ended with {ended.returncode}:\n{ended.stdout}"
        return ended.stdout

    def _environment(self) -> dict[str, str]:
        """That of somebody who has the programs and the library and installs into the folder."""
        inherited = {name: value for name, value in os.environ.items() if name not in _SET_FOR_TESTS}
        return {
            **inherited,
            "PATH": f"{PROGRAMS}:{os.environ['PATH']}",
            "PKG_CONFIG_PATH": str(PROGRAMS),
            "DESTDIR": str(self.folder / "installed"),
        }

    def _link_the_project(self) -> None:
        for entry in markdown.ROOT.iterdir():
            if entry.name not in _NOT_LINKED:
                (self.folder / entry.name).symlink_to(entry)
        (self.folder / "photo.jpg").symlink_to(Path(__file__).with_name("photo.jpg"))
        (self.folder / "build").mkdir()
        (self.folder / "build" / "release").symlink_to(PROGRAMS)


def _announcements(line: str) -> list[str]:
    """What a program that runs until it is interrupted says first, each at the start of a line."""
    if line.startswith("nadrel listen"):
        return ["listening on"]
    if line.startswith("nadrel-printer") and not re.search(r"--(input|exit-when-idle|help)\b", line):
        return [link for link in ("serial", "tcp") if f"--{link}" in line.split()]
    return []


def _free_port() -> int:
    with socket.create_server(("127.0.0.1", 0)) as server:
        port: int = server.getsockname()[1]
        return port
