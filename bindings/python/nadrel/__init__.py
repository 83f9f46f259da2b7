"""Print on portable thermal receipt printers through the NADREL printer library.

    with nadrel.SerialPrinter("/dev/ttyUSB0", 115200) as printer:
        printer.set_text_alignment(nadrel.Alignment.CENTRE)
        printer.text("Thank you")
        printer.print_data()
        printer.print_spool()
"""

from .connection import Parity, Printer, SerialPrinter, StopBits, TcpPrinter
from .errors import PrinterError
from .host import LinkReport
from .library import Library, load
from .notifications import Kind, Notification, NotificationStream
from .text import Alignment

__all__ = [
    "Alignment",
    "Kind",
    "Library",
    "LinkReport",
    "Notification",
    "NotificationStream",
    "Parity",
    "Printer",
    "PrinterError",
    "SerialPrinter",
    "StopBits",
    "TcpPrinter",
    "load",
]
