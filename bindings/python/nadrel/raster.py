"""Pictures."""

import os

from .calls import Calls

Path = str | os.PathLike[str]


class Raster(Calls):
    """Pictures from uncompressed Windows bitmap files (BMP) of 1 or 24 bits a pixel, a dot for a pixel."""

    def bmp(self, path: Path, x: int, y: int) -> int:
        """A picture at x, y in dots; set bits of a 1-bit file print. The new spool length in bytes comes
        back (C: BmpSaveSpool)."""
        return self._result("BmpSaveSpool", os.fspath(path), x, y)

    def normal_bmp(self, path: Path) -> None:
        """A picture at the present position; clear bits of a 1-bit file print. A file that cannot be loaded
        appends nothing and is not reported (C: NormalBmpSaveSpool)."""
        self._do("NormalBmpSaveSpool", os.fspath(path))

    def compressed_bmp(self, path: Path) -> None:
        """The same, compressed (C: CompressedBmpSaveSpool)."""
        self._do("CompressedBmpSaveSpool", os.fspath(path))

    def load_logo(self, number: int) -> None:
        """Print a picture that the printer holds, 0 to 255 (C: LoadLogoSaveSpool)."""
        self._do("LoadLogoSaveSpool", number)
