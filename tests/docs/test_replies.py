"""docs/replies.md: its examples are told as it says."""

import queue
import unittest
from unittest.mock import patch

import calls
import markdown
import nadrel
from nadrel import Kind, Notification
from peer import QUERY_FRAME, Peer

DOCUMENT = markdown.ROOT / "docs" / "replies.md"
PATIENCE = 30  # seconds
PATIENCE_MS = PATIENCE * 1000


def number_of(kind: str) -> int:
    """A kind as the document writes it: a letter, or two hexadecimal digits."""
    return ord(kind) if len(kind) == 1 else int(kind, 16)


def expected(row: markdown.Row) -> Notification:
    kind, data = number_of(markdown.code(row["Kind"])), row["Data"]
    if data.startswith("the value "):
        return Notification(kind, status=int(markdown.code(data.removeprefix("the value ")), 16))
    told = calls.bytes_of(data.strip("`"))
    return Notification(kind, told, told[0] if kind == Kind.STATUS else None)


class Replies(unittest.TestCase):
    tables = {heading: rows for heading, rows in markdown.tables(DOCUMENT)}

    def test_every_example_is_told_as_it_says(self) -> None:
        rows = self.tables["Examples"]
        self.assertGreater(len(rows), 10)
        for row in rows:
            with self.subTest(row["Calls"], sends=row["Printer sends"]):
                self.assertEqual(self.told(row), expected(row))

    def told(self, row: markdown.Row) -> Notification | None:
        framed = row["Link"] == "framed"
        with Peer() as peer, self.connected(peer, framed) as printer:
            replies = printer.notifications()
            calls.run(printer.functions, markdown.code(row["Calls"]))
            peer.send(calls.bytes_of(markdown.code(row["Printer sends"])))
            return replies.get(PATIENCE_MS)

    def connected(self, peer: Peer, framed: bool) -> nadrel.Printer:
        printer = nadrel.TcpPrinter(peer.host, peer.port, framed=framed)
        if framed:
            self.assertEqual(peer.take(len(QUERY_FRAME)), QUERY_FRAME)
        peer.answers_queries = False
        return printer

    def test_a_reply_without_an_address_is_told_with_the_length_of_the_last_one(self) -> None:
        sentence = "`length` is still that of the last reply with kind `D` or `T`, or `S` on a plain link"
        self.assertIn(sentence, " ".join(DOCUMENT.read_text().split()))
        told: queue.Queue[tuple[int, int]] = queue.Queue()  # kind, length

        def note(w_param: int, l_param: int) -> Notification:
            told.put((w_param >> 16, w_param & 0xFFFF))
            return Notification(w_param >> 16)

        with patch.object(Notification, "from_message", note), Peer() as peer, self.connected(peer, True):
            self.assertEqual(told.get(timeout=PATIENCE), (Kind.STATUS, 0))
            replies = ((b"\x06", 0x06, 0), (b"DVP-58", Kind.REPLY, 6))
            later = tuple((bytes([kind]), kind, 6) for kind in (0x06, 0x15, 0x18, 0x03, 0x04))
            for reply, kind, length in (*replies, *later, (b"S\x40", Kind.STATUS, 6)):
                peer.send(b"\xc0" + reply)
                self.assertEqual(told.get(timeout=PATIENCE), (kind, length))

    def test_the_kinds_are_those_that_the_python_package_knows(self) -> None:
        (kinds,) = [rows for heading, rows in self.tables.items() if heading == "What the printer says"]
        documented = {
            number_of(word.strip("`, "))
            for row in kinds
            for word in row["Kind"].split(" (")[0].split(",")
        }
        self.assertEqual(documented, {int(kind) for kind in Kind})


if __name__ == "__main__":
    unittest.main()
