"""The declarations for .NET compile, and a program that calls the library through them is understood."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import header
from peer import Peer

HERE = Path(__file__).resolve().parent
DECLARATIONS = header.API.parent / "bindings" / "dotnet" / "NadrelPrinter.cs"
LIBRARY = Path(os.environ.get("NADREL_LIBRARY", "libnadrelprinter.so")).resolve()
PATIENCE = 120  # seconds

SENT = bytes.fromhex(
    "43 61 66 E9 20 33 20 80"  # text
    "1B 00 FF"  # bytes
    "1D 5A 02 1B 5A 04 4D 05 02 00 61 62"  # a QR code
    "1B 4C 1B 57 00 00 00 00 80 01 64 00 18 1B 4F 08 00 00 00"
    "1D 77 02 1D 68 50 1D 48 00 1D 6B 49 04 7B 42 31 32 0C"  # a barcode on a page of its own
    "1B 4D 53 00 03 78 79 7A"  # a command for a secured card
    "1B 67 55 18 FF 00 41 20 AC 00 00 0A"  # text in a TrueType font
)
MODEL_NAME = bytes.fromhex("1B 59 FF")


class Dotnet(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        command = ["mcs", "-warnaserror", "-out:host.exe", HERE / "DotnetHost.cs", DECLARATIONS]
        subprocess.run(command, cwd=self.folder, check=True, timeout=PATIENCE)

    def host(self, peer: Peer, **environment: str) -> "subprocess.Popen[str]":
        command = ["mono", self.folder / "host.exe", peer.host, str(peer.port)]
        inherited = {name: value for name, value in os.environ.items() if name != "LD_LIBRARY_PATH"}
        surroundings = {**inherited, **environment}
        pipe = subprocess.PIPE
        return subprocess.Popen(command, env=surroundings, text=True, stdout=pipe, stderr=pipe)

    def test_arguments_results_and_notifications_arrive(self) -> None:
        said = self.said_with(LD_LIBRARY_PATH=str(LIBRARY.parent))
        functions = len(header.functions("NadrelPrinter.h")) + len(header.functions("NadrelHost.h"))
        total = len(SENT) + len(MODEL_NAME)
        expected = {
            f"functions {functions}",
            "absent -2",
            "connect 1",
            "port True",
            "converted plain",
            "bytes 11",
            "barcode 1",
            f"card {SENT.index(b'xyz')}",
            f"font {len(SENT)}",
            "print 1",
            "told D 4D-2D-37 7",
            "answer True",
            "refused 0",
            f"report 1 asked {total} taken {total} received 3 told 1 errors 0",
            "close 1",
        }
        self.assertEqual(set(said), expected)

    def test_a_link_beside_the_program_is_enough_where_the_name_is_not_installed(self) -> None:
        (self.folder / "libnadrelprinter.so").symlink_to(LIBRARY)
        self.assertIn("close 1", self.said_with())

    def said_with(self, **environment: str) -> list[str]:
        """What the host says that has printed on a peer and asked it for its model."""
        with Peer() as peer, self.host(peer, **environment) as host:
            received = peer.take(len(SENT) + len(MODEL_NAME))
            if received:
                peer.send(b"M-7")
            said, complaint = host.communicate(timeout=PATIENCE)
        self.assertEqual((host.returncode, complaint), (0, ""))
        self.assertEqual(received.hex(" "), (SENT + MODEL_NAME).hex(" "))
        return said.splitlines()


if __name__ == "__main__":
    unittest.main()
