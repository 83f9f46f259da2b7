"""The library's functions as its C headers declare them: the types of results and arguments, nothing else."""

import ctypes
from ctypes import c_char_p, c_int32, c_ssize_t, c_uint8, c_uint32, c_uint64, c_void_p
from typing import Any


def utf16(text: str) -> bytes:
    """The text in 16-bit units; a lone surrogate is one of them."""
    return text.encode("utf-16-le", "surrogatepass")


class Utf16:
    """An argument that is zero-terminated text in 16-bit units: char16_t on Linux, wchar_t on Windows."""

    @classmethod
    def from_param(cls, text: str | None) -> Any:
        """Copy the text into units that live as long as the call. None is a null pointer."""
        if text is None:
            return None
        if not isinstance(text, str):
            raise TypeError(f"text is expected, not {type(text).__name__}")
        if "\0" in text:
            raise ValueError("the text holds a null character, at which the library would end it")
        return ctypes.create_string_buffer(utf16(text) + b"\0")


class LinkReport(ctypes.Structure):
    """What became of the bytes since the last connect (C: NadrelLinkReport)."""

    _fields_ = [
        ("size", c_uint32),
        ("lastError", c_uint32),
        ("errorCount", c_uint32),
        ("notificationsPosted", c_uint32),
        ("bytesAsked", c_uint64),
        ("bytesTaken", c_uint64),
        ("bytesReceived", c_uint64),
        ("bytesDropped", c_uint64),
    ]


Handle = c_ssize_t
NotificationHandler = ctypes.CFUNCTYPE(None, c_uint32, c_uint32, c_ssize_t, c_void_p)

Declaration = tuple[Any, tuple[Any, ...]]  # result, arguments

PRINTER_FUNCTIONS: dict[str, Declaration] = {
    # Spool
    "ControlCommand": (c_int32, (c_char_p, c_int32)),
    "SaveSpool": (c_int32, (Utf16, c_int32, c_int32)),
    "U2A": (c_char_p, (Utf16,)),
    "ClearSpool": (None, ()),
    "GetPortHandle": (Handle, ()),
    # Text
    "SetPrintPosition": (c_int32, (c_int32, c_int32)),
    "PrintData": (None, ()),
    "PrintDotFeed": (None, (c_int32,)),
    "PrintLineFeed": (None, (c_int32,)),
    "InitPrinterStatus": (None, ()),
    "SetLineSpace": (None, (c_int32,)),
    "SetCharSpace": (None, (c_int32,)),
    "SetCharCodeTable": (None, (c_int32, c_uint32)),
    "SetCharCodeTableEX": (None, (c_uint32,)),
    "SetFontSize": (None, (c_int32,)),
    "SetTextStyle": (None, (c_uint32, c_uint32, c_int32, c_int32, c_uint32)),
    "SetUpsideDown": (None, (c_uint32,)),
    "SetAbsPosition": (None, (c_int32,)),
    "SetTextAlignment": (None, (c_int32,)),
    "TextSaveSpool": (None, (Utf16,)),
    "CutPaper": (None, (c_uint32,)),
    "FeedToMark": (None, ()),
    "SetPositionFromMark": (None, (c_int32,)),
    "SetMarkUseMode": (None, (c_uint32,)),
    # Page mode
    "SetPageMode": (None, ()),
    "Page_SetStandardMode": (None, ()),
    "Page_ClearCurrentData": (None, ()),
    "Page_Print": (None, ()),
    "Page_Print_StandardMode": (None, ()),
    "Page_SetArea": (None, (c_int32, c_int32, c_int32, c_int32)),
    "Page_SetDirection": (None, (c_int32,)),
    "Page_SetPosition": (None, (c_int32, c_int32)),
    "Page_Newline": (None, ()),
    "Page_DotFeed": (None, (c_int32,)),
    "Page_LineFeed": (None, (c_int32,)),
    "Page_DrawBox": (None, (c_int32, c_int32, c_int32, c_int32, c_int32)),
    "Page_DrawLine": (None, (c_int32, c_int32, c_int32, c_int32, c_int32)),
    "Page_DrawEllipse": (None, (c_int32, c_int32, c_int32, c_int32, c_int32)),
    "InitPageMode": (None, (c_int32, c_int32, c_int32, c_int32)),
    # Barcodes
    "OneDimensionBarcodeSaveSpool": (c_int32, (c_uint32, c_int32, c_int32, c_int32, Utf16)),
    "BarcodeSaveSpool": (c_int32, (c_uint8, c_uint8, c_uint8, c_int32, Utf16, c_int32, c_int32, c_int32)),
    "PDF417SaveSpool": (None, (c_int32, c_int32, c_int32, c_int32, Utf16, c_int32)),
    "TruncatedPDF417SaveSpool": (None, (c_int32, c_int32, c_int32, c_int32, Utf16, c_int32)),
    "MicroPDF417SaveSpool": (None, (c_int32, c_int32, c_int32, c_int32, Utf16, c_int32)),
    "QRCodeSaveSpool": (None, (c_int32, c_uint32, c_int32, Utf16)),
    "DataMatrixSaveSpool": (None, (c_uint32, c_uint32, c_int32, Utf16)),
    "MaxicodeSaveSpool": (None, (c_int32, Utf16)),
    "GS1DatabarSaveSpool": (None, (c_int32, c_int32, Utf16)),
    # Macros
    "SetMarco_Start": (None, ()),
    "SetMacro_End": (None, ()),
    "SetMacro_FontSize_FontTable": (None, (c_int32, c_int32)),
    "Initialize_Macro": (None, ()),
    # TrueType
    "SelectForTTF": (c_int32, (Utf16,)),
    "SetFontForTTF": (None, (Utf16,)),
    "PrintSpoolForTTF": (c_int32, (Utf16, c_uint8, c_uint8)),
    # Raster
    "BmpSaveSpool": (c_int32, (Utf16, c_int32, c_int32)),
    "NormalBmpSaveSpool": (None, (Utf16,)),
    "CompressedBmpSaveSpool": (None, (Utf16,)),
    "LoadLogoSaveSpool": (None, (c_int32,)),
    # Serial connection
    "InitPrinter": (c_int32, (Utf16, c_uint32, c_int32)),
    "ConnectSerialPrinter": (c_int32, (Utf16, c_uint32, c_int32, c_int32)),
    "ConnectSerialPrinterEx": (c_int32, (c_char_p, c_uint32, c_uint8, c_uint8, c_uint8, c_int32, c_int32)),
    "ClosePrinter": (c_int32, ()),
    "ClosePrinterConnection": (c_int32, ()),
    # Wireless connection
    "InitWlanPrinter": (c_int32, (Utf16, c_uint32, c_int32, c_int32)),
    "ConnectWirelessPrinter": (c_int32, (Utf16, c_uint32, c_int32, c_int32)),
    # Printing
    "PrintSpool": (c_int32, (c_int32,)),
    # Status
    "GetPrinterStatus": (c_int32, (c_int32,)),
    "GetPrinterStatusEX": (c_int32, (c_int32,)),
    "GetPrinterModelName": (None, ()),
    "GetFirmwareVersion": (None, ()),
    "Set_PrintOutStatus": (c_int32, (c_uint32,)),
    # Card readers
    "EnterMSRMode": (c_int32, (c_int32,)),
    "CancelMSRMode": (c_int32, ()),
    "CardCancel": (c_int32, ()),
    "CardRead": (c_int32, (c_int32,)),
    "CardRead_M": (c_int32, (c_int32,)),
    "SecuredCardCancel": (c_int32, ()),
    "EnterSCRMode": (c_int32, ()),
    "CancelSCRMode": (c_int32, ()),
    "SecuredCardCommend": (c_int32, (c_char_p,)),
    # Payment
    "SetTermialID": (c_int32, (Utf16,)),
    "SetPaymentReq": (c_int32, (c_uint32, Utf16, Utf16, Utf16)),
}

# Exported on Linux only.
HOST_FUNCTIONS: dict[str, Declaration] = {
    "SetNotificationHandler": (None, (NotificationHandler, c_void_p)),
    "SetAnsiCodePage": (c_int32, (c_uint32,)),
    "GetLinkReport": (c_int32, (ctypes.POINTER(LinkReport),)),
    "SetSendTimeout": (c_int32, (c_int32,)),
}
