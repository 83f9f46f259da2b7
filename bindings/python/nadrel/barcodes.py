"""Barcodes."""

from .calls import Calls


class Barcodes(Calls):
    """Barcodes that the printer draws. Only the low 8 bits of the data's length in bytes count. A parameter
    out of range goes out as 0.

    symbology: the printer's number, sent as its low byte; the virtual printer knows 65 UPC-A, 66 UPC-E,
    67 EAN-13, 68 EAN-8, 69 Code 39, 70 ITF, 71 Codabar, 72 Code 93, 73 Code 128.
    """

    def one_dimension_barcode(
        self, symbology: int, data: str, width: int = 2, height: int = 80, hri: bool = False
    ) -> int:
        """A one-dimensional barcode. width: of the narrow module, 1 to 8 dots; height: 1 to 255 dots; hri:
        text below. The new spool length in bytes comes back (C: OneDimensionBarcodeSaveSpool)."""
        return self._result("OneDimensionBarcodeSaveSpool", symbology, width, height, hri, data)

    def barcode_on_page(
        self,
        symbology: int,
        data: str,
        area_width: int,
        area_height: int,
        x: int = 0,
        width: int = 2,
        height: int = 80,
        hri: bool = False,
    ) -> None:
        """A one-dimensional barcode on a page of its own, area_width by area_height dots, x dots from the
        left. width: of the narrow module, 2 to 6 dots, else 2; height: 0 to 255 dots
        (C: BarcodeSaveSpool)."""
        self._result("BarcodeSaveSpool", symbology, width, height, hri, data, area_width, area_height, x)

    def pdf417(
        self, data: str, module_width: int, p1: int, p2: int, p3: int, hri: bool = False
    ) -> None:
        """A PDF417 symbol. module_width: 1 to 8 dots; p1: 1 to 30; p2: 0 to 8; p3: 2 to 5
        (C: PDF417SaveSpool)."""
        self._do("PDF417SaveSpool", module_width, p1, p2, p3, data, hri)

    def truncated_pdf417(
        self, data: str, module_width: int, p1: int, p2: int, p3: int, hri: bool = False
    ) -> None:
        """A truncated PDF417 symbol. module_width: 1 to 8 dots; p1: 1 to 4; p2: 4 to 44; p3: 2 to 5
        (C: TruncatedPDF417SaveSpool)."""
        self._do("TruncatedPDF417SaveSpool", module_width, p1, p2, p3, data, hri)

    def micro_pdf417(
        self, data: str, module_width: int, p1: int, p2: int, p3: int, hri: bool = False
    ) -> None:
        """A MicroPDF417 symbol. module_width: 1 to 8 dots; p1: 1 to 4; p2: 0 to 8; p3: 2 to 5
        (C: MicroPDF417SaveSpool)."""
        self._do("MicroPDF417SaveSpool", module_width, p1, p2, p3, data, hri)

    def qr_code(self, data: str, version: int = 0, ecc_level: str = "M", module_size: int = 5) -> None:
        """A QR code. version: 1 to 40, 0 lets the printer choose; ecc_level: L, M, Q or H; module_size: 1 to
        8 dots (C: QRCodeSaveSpool)."""
        self._do("QRCodeSaveSpool", version, ord(ecc_level), module_size, data)

    def data_matrix(self, data: str, p1: int = 0, p2: int = 0, module_size: int = 5) -> None:
        """A Data Matrix symbol. p1, p2: the printer's, a byte each; module_size: 1 to 8 dots
        (C: DataMatrixSaveSpool)."""
        self._do("DataMatrixSaveSpool", p1, p2, module_size, data)

    def maxicode(self, data: str, mode: int = 4) -> None:
        """A MaxiCode symbol. mode: 2 to 6 (C: MaxicodeSaveSpool)."""
        self._do("MaxicodeSaveSpool", mode, data)

    def gs1_databar(self, data: str, kind: int = 0, segments: int = 0) -> None:
        """A GS1 DataBar symbol. kind: 0 to 6; segments: of kind 6, even and 2 to 20
        (C: GS1DatabarSaveSpool)."""
        self._do("GS1DatabarSaveSpool", kind, segments, data)
