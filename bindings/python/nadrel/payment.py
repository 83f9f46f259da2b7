"""Payment terminals."""

from .calls import Calls


class Payment(Calls):
    """Messages to the printer's payment module, sent at once."""

    def set_terminal_id(self, identifier: str) -> None:
        """Set the terminal's identifier, 8 characters (C: SetTermialID)."""
        _require_length("the identifier", identifier, 8)
        self._result("SetTermialID", identifier)

    def set_payment_req(self, kind: bool, first: str, second: str, third: str) -> None:
        """Send a payment request of 0 to 12, 8 and 6 digits (C: SetPaymentReq)."""
        _require_length("the second field", second, 8)
        self._result("SetPaymentReq", kind, first, second, third)


# The library's result for another length is that length, which for 1 is the same as success.
def _require_length(what: str, text: str, expected: int) -> None:
    if len(text) != expected:
        raise ValueError(f"{what} has {len(text)} characters, {expected} are expected")
