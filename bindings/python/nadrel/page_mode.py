"""Page mode and drawing."""

from .calls import Calls


class PageMode(Calls):
    """A page that the printer composes and prints on command. Coordinates are dots in 16-bit fields.

    "Page only" functions append nothing in standard mode.
    """

    def init_page_mode(self, x: int, y: int, width: int, height: int) -> None:
        """Put the printer back to its defaults, enter page mode and clear an area (C: InitPageMode)."""
        self._do("InitPageMode", x, y, width, height)

    def set_page_mode(self) -> None:
        """Enter page mode (C: SetPageMode)."""
        self._do("SetPageMode")

    def page_set_standard_mode(self) -> None:
        """Return to standard mode; the page is not printed (C: Page_SetStandardMode)."""
        self._do("Page_SetStandardMode")

    def page_clear_current_data(self) -> None:
        """Clear the page within the area. Page only (C: Page_ClearCurrentData)."""
        self._do("Page_ClearCurrentData")

    def page_print(self) -> None:
        """Print the page and keep it. Page only (C: Page_Print)."""
        self._do("Page_Print")

    def page_print_standard_mode(self) -> None:
        """Print the page and return to standard mode. Page only (C: Page_Print_StandardMode)."""
        self._do("Page_Print_StandardMode")

    def page_set_area(self, x: int, y: int, width: int, height: int) -> None:
        """Set the area that is composed. Page only (C: Page_SetArea)."""
        self._do("Page_SetArea", x, y, width, height)

    def page_set_direction(self, direction: int) -> None:
        """Set the print direction, 0 to 3. Page only (C: Page_SetDirection)."""
        self._do("Page_SetDirection", direction)

    def page_set_position(self, x: int, y: int) -> None:
        """Set the position within the area. Page only (C: Page_SetPosition)."""
        self._do("Page_SetPosition", x, y)

    def page_newline(self) -> None:
        """Go to the next line. Page only (C: Page_Newline)."""
        self._do("Page_Newline")

    def page_dot_feed(self, dots: int) -> None:
        """Feed 0 to 255 dots. Page only (C: Page_DotFeed)."""
        self._do("Page_DotFeed", dots)

    def page_line_feed(self, lines: int) -> None:
        """Feed 0 to 255 lines. Page only (C: Page_LineFeed)."""
        self._do("Page_LineFeed", lines)

    def page_draw_box(self, x: int, y: int, width: int, height: int, thickness: int = 1) -> None:
        """Draw a box; thickness 0 to 255 dots. Page only (C: Page_DrawBox)."""
        self._do("Page_DrawBox", x, y, width, height, thickness)

    def page_draw_line(self, x1: int, y1: int, x2: int, y2: int, thickness: int = 1) -> None:
        """Draw a line in either mode; thickness 0 to 255 dots (C: Page_DrawLine)."""
        self._do("Page_DrawLine", x1, y1, x2, y2, thickness)

    def page_draw_ellipse(self, x1: int, y1: int, x2: int, y2: int, thickness: int = 1) -> None:
        """Draw an ellipse between two corners in either mode; thickness 0 to 255 dots
        (C: Page_DrawEllipse)."""
        self._do("Page_DrawEllipse", x1, y1, x2, y2, thickness)
