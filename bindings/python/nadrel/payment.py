"""Payment terminals."""

from .calls import Calls
from .declarations import utf16


class Payment(Calls):
    """Messages to the printer's payment module, sent at once."""

    def set_terminal_id(self, identifier: str) -> None:
        """Set the terminal's identifier, 8 UTF-16 units, of each of which the low byte is sent
        (C: SetTermialID)."""
        _require_length("the identifier", identifier, 8)
        self._result("SetTermialID", identifier)

    def set_payment_req(self, kind: bool, first: str, second: str, third: str) -> None:
        """Send a payment request. kind: sent as 1 or 0; first, second, third: 0 to 12, 8 and 6 digits
        (C: SetPaymentReq)."""
        _require_length("the second field", second, 8)
        self._result("SetPaymentReq", kind, first, second, third)


# The library's result for another length is that length, which for 1 is the same as success.
def _require_length(what: str, text: str, expected: int) -> None:
    units = len(utf16(text)) // 2
    if units != expected:
        raise ValueError(f"{what} has {units} UTF-16 units, {expected} are expected")
