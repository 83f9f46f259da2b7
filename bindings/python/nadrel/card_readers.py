"""Card readers."""

from .calls import Calls


class CardReaders(Calls):
    """Magnetic-stripe, smart-card and secured card readers. What they read comes as notifications."""

    def enter_msr_mode(self, track: int) -> None:
        """Read magnetic stripes; track: 0 to 4 (C: EnterMSRMode)."""
        self._result("EnterMSRMode", track)

    def cancel_msr_mode(self) -> None:
        """End it (C: CancelMSRMode)."""
        self._result("CancelMSRMode")

    def card_read(self, flag: bool) -> None:
        """End a card read and begin one like enter_msr_mode(1), or with False like enter_msr_mode(0)
        (C: CardRead)."""
        self._result("CardRead", flag)

    def card_read_m(self, flag: bool) -> None:
        """Read a card with the other command, 02 and a letter: with True C, with False D, which is the
        reverse of card_read (C: CardRead_M)."""
        self._result("CardRead_M", flag)

    def card_cancel(self) -> None:
        """End a card read (C: CardCancel)."""
        self._result("CardCancel")

    def secured_card_cancel(self) -> None:
        """End reading secured cards (C: SecuredCardCancel)."""
        self._result("SecuredCardCancel")

    def enter_scr_mode(self) -> int:
        """Append the command that begins smart-card reading; the position of its last byte in the spool
        comes back (C: EnterSCRMode)."""
        return self._result("EnterSCRMode")

    def cancel_scr_mode(self) -> int:
        """Append the command that ends it (C: CancelSCRMode)."""
        return self._result("CancelSCRMode")

    def secured_card_command(self, command: bytes) -> int:
        """Append a command for the secured card module, without a zero byte in it; the position in the
        spool where it begins comes back (C: SecuredCardCommend)."""
        if 0 in command:
            raise ValueError("the command holds a zero byte, at which the library would end it")
        return self._result("SecuredCardCommend", command)
