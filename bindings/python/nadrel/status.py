"""Status, model name and firmware version."""

from .calls import Calls


class Status(Calls):
    """Questions to the printer. They are sent at once; the answers come as notifications."""

    def get_printer_status(self, timeout_ms: int = 1000) -> None:
        """Ask for the status every 200 ms, timeout_ms / 200 times, until a byte has come. The status comes
        as Kind.STATUS; PrinterError -7 when the printer is silent (C: GetPrinterStatus)."""
        self._result("GetPrinterStatus", timeout_ms)

    def get_printer_status_ex(self, timeout_ms: int = 1000) -> None:
        """The same with the printer's other status command (C: GetPrinterStatusEX)."""
        self._result("GetPrinterStatusEX", timeout_ms)

    def get_printer_model_name(self) -> None:
        """Ask for the model name, which comes as Kind.REPLY (C: GetPrinterModelName)."""
        self._do("GetPrinterModelName")

    def get_firmware_version(self) -> None:
        """Ask for the firmware version, which comes as Kind.REPLY (C: GetFirmwareVersion)."""
        self._do("GetFirmwareVersion")

    def set_print_out_status(self, on: bool) -> None:
        """Have each print-out reported as Kind.PRINT_OUT, or not (C: Set_PrintOutStatus)."""
        self._result("Set_PrintOutStatus", on)
