"""What a result that is a failure means, function by function."""

NOT_CONNECTED = -11

_NO_LINK = "no link is open"
_ANSWERLESS = "the printer did not answer four framed queries; the link is closed again"
_OUT_OF_MEMORY = "the library is out of memory"
_PAST_LIMIT = "the spool is past 409600 bytes; nothing was sent"

_APPENDING = {NOT_CONNECTED: _NO_LINK, -12: "the spool has no room for it"}
_SERIAL = {
    0: _OUT_OF_MEMORY,
    -1: "a serial or TCP link is already open",
    -2: "the port could not be opened",
    -3: "the port did not take the line settings",
    -4: "the port did not take the time-outs",
    -5: _ANSWERLESS,
}
_STATUS = {0: _OUT_OF_MEMORY, -1: _NO_LINK, -7: "the printer did not answer in time"}

_MEANINGS: dict[str, dict[int, str]] = {
    "ControlCommand": _APPENDING,
    "SaveSpool": {**_APPENDING, 0: "there is no text", -12: "the text would take the spool past 9999 bytes"},
    "SetPrintPosition": _APPENDING,
    "OneDimensionBarcodeSaveSpool": _APPENDING,
    "BarcodeSaveSpool": {0: "there is no data"},
    "SelectForTTF": _APPENDING,
    "PrintSpoolForTTF": _APPENDING,
    "BmpSaveSpool": {**_APPENDING, -1: "the file cannot be loaded: it must be a bitmap file (BMP)"},
    "EnterSCRMode": _APPENDING,
    "CancelSCRMode": _APPENDING,
    "SecuredCardCommend": _APPENDING,
    "InitPrinter": _SERIAL,
    "ConnectSerialPrinter": _SERIAL,
    "ConnectSerialPrinterEx": _SERIAL,
    "InitWlanPrinter": {
        0: _OUT_OF_MEMORY,
        -1: "the socket could not be made or waited for",
        -2: "no connection in time, or it was refused",
        -3: "a serial or TCP link is already open",
        -5: _ANSWERLESS,
    },
    "ConnectWirelessPrinter": {
        0: _OUT_OF_MEMORY,
        -1: "a serial or TCP link is already open",
        -2: "the socket failed",
        -3: "the attempts ran out before the connection stood",
        -5: _ANSWERLESS,
        -7: "the last attempt timed out or was refused",
    },
    "PrintSpool": {
        NOT_CONNECTED: _NO_LINK,
        -13: "the framed form is longer than 409600 bytes; the spool is kept",
        0: "the spool's length is below zero; nothing was sent",
    },
    "GetPrinterStatus": _STATUS,
    "GetPrinterStatusEX": _STATUS,
    "Set_PrintOutStatus": {-12: _PAST_LIMIT},
    "EnterMSRMode": {NOT_CONNECTED: _NO_LINK},
    "SecuredCardCancel": {-12: _PAST_LIMIT},
    "SetTermialID": {0: "the identifier is empty or the library is out of memory"},
    "SetPaymentReq": {
        0: "the second field is empty or the library is out of memory",
        -1: "the first field is longer than 12 digits; nothing was sent",
        -4: "the third field has not 6 digits; nothing was sent",
    },
    "SetAnsiCodePage": {0: "it is no code page that the library knows"},
    "GetLinkReport": {0: "the library does not know a report of this size"},
    "SetSendTimeout": {0: "the time is below zero"},
}


class PrinterError(Exception):
    """A function of the library failed.

    function: its C name. code: its result. meaning: what the result means with this function; the same
    number means different things with different functions.
    """

    def __init__(self, function: str, code: int, meaning: str | None = None) -> None:
        self.function = function
        self.code = code
        known = _MEANINGS.get(function, {}).get(code, "a failure without a name")
        self.meaning: str = known if meaning is None else meaning
        super().__init__(f"{function}: {self.meaning} ({code})")

    def __reduce__(self) -> tuple[type["PrinterError"], tuple[str, int, str]]:
        return type(self), (self.function, self.code, self.meaning)


def check(function: str, result: int) -> int:
    """Give the result back, or raise PrinterError where it is a failure of that function."""
    if result < 0 or result in _MEANINGS.get(function, {}):
        raise PrinterError(function, result)
    return result
