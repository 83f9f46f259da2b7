"""The declarations of the Python package are those of the headers."""

import ctypes
import inspect
import re
import unittest

import header
from nadrel import Printer
from nadrel import declarations as python
from nadrel.barcodes import Barcodes

ARGUMENTS = {
    "int32_t": ctypes.c_int32,
    "uint32_t": ctypes.c_uint32,
    "uint8_t": ctypes.c_uint8,
    "const NadrelChar *": python.Utf16,
    "const char *": ctypes.c_char_p,
    "const uint8_t *": ctypes.c_char_p,
    "NadrelNotificationHandler": python.NotificationHandler,
    "void *": ctypes.c_void_p,
    "NadrelLinkReport *": ctypes.POINTER(python.LinkReport),
}
RESULTS = {
    "void": None,
    "int32_t": ctypes.c_int32,
    "const char *": ctypes.c_char_p,
    "NadrelHandle": ctypes.c_ssize_t,
}
FIELDS = {"uint32_t": ctypes.c_uint32, "uint64_t": ctypes.c_uint64}


class Declarations(unittest.TestCase):
    def require_same(
        self, declared: dict[str, header.Function], expected: dict[str, python.Declaration]
    ) -> None:
        self.assertEqual(sorted(declared), sorted(expected))
        for name, function in declared.items():
            with self.subTest(name):
                result, arguments = expected[name]
                self.assertIs(result, RESULTS[function.result])
                self.assertEqual(list(arguments), [ARGUMENTS[p.type] for p in function.parameters])

    def test_the_printer_functions_are_declared_as_in_the_header(self) -> None:
        self.require_same(header.functions("NadrelPrinter.h"), python.PRINTER_FUNCTIONS)

    def test_the_exported_names_are_declared(self) -> None:
        self.assertEqual(header.exported("NadrelPrinter.exports"), sorted(python.PRINTER_FUNCTIONS))
        self.assertEqual(header.exported("NadrelHost.exports"), sorted(python.HOST_FUNCTIONS))

    def test_the_host_functions_are_declared_as_in_the_header(self) -> None:
        self.require_same(header.functions("NadrelHost.h"), python.HOST_FUNCTIONS)

    def test_the_link_report_has_the_fields_of_the_header(self) -> None:
        fields = header.structure_fields("NadrelHost.h", "NadrelLinkReport")
        self.assertEqual(python.LinkReport._fields_, [(f.name, FIELDS[f.type]) for f in fields])

    def test_the_notification_handler_takes_what_the_header_says(self) -> None:
        (handler,) = header.definitions("NadrelHost.h", "NadrelNotificationHandler")
        arguments = "(uint32_t message, uint32_t wParam, intptr_t lParam, void *context)"
        self.assertEqual(handler, "void (*NadrelNotificationHandler)" + arguments)
        expected = (ctypes.c_uint32, ctypes.c_uint32, ctypes.c_ssize_t, ctypes.c_void_p)
        self.assertEqual(getattr(python.NotificationHandler, "_argtypes_"), expected)
        self.assertIsNone(getattr(python.NotificationHandler, "_restype_"))
        self.assertEqual(ctypes.sizeof(ctypes.c_ssize_t), ctypes.sizeof(ctypes.c_void_p))

    def test_text_and_handles_are_what_the_header_says(self) -> None:
        units = ("char16_t", "wchar_t", "char16_t", "char16_t")  # the second on Windows, of 16 bits there
        written = [f"{unit} NadrelChar" for unit in units]
        self.assertEqual(header.definitions("NadrelPrinter.h", "NadrelChar"), written)
        self.assertEqual(header.definitions("NadrelPrinter.h", "NadrelHandle"), ["intptr_t NadrelHandle"])
        conventions = ["__cdecl", ""]  # that of CDLL
        self.assertEqual(header.definitions("NadrelPrinter.h", "NADREL_CALL"), conventions)
        self.assertIs(python.Handle, ctypes.c_ssize_t)

    def test_every_function_is_named_by_the_method_that_calls_it(self) -> None:
        named = []
        for _, method in inspect.getmembers(Printer):
            named += re.findall(r"\b[A-Za-z0-9_]+\b", inspect.getdoc(method) or "")
        for connection in Printer.__subclasses__():
            named += re.findall(r"\b[A-Za-z0-9_]+\b", inspect.getdoc(connection.__init__) or "")
        missing = (set(python.PRINTER_FUNCTIONS) | set(python.HOST_FUNCTIONS)) - set(named)
        self.assertEqual(missing, set())

    def test_every_method_calls_the_functions_that_its_docstring_names(self) -> None:
        functions = set(python.PRINTER_FUNCTIONS) | set(python.HOST_FUNCTIONS)
        for name, method in inspect.getmembers(Printer, inspect.isfunction):
            called = set(re.findall(r'self\._(?:do|result|call)\(\s*"(\w+)"', inspect.getsource(method)))
            named = functions & set(re.findall(r"\w+", inspect.getdoc(method) or ""))
            with self.subTest(name):
                self.assertLessEqual(called, named)


class Docstrings(unittest.TestCase):
    def test_the_symbologies_are_those_that_the_virtual_printer_knows(self) -> None:
        source = (header.API.parent / "printer" / "SymbologyTable.h").read_text()
        kinds = re.search(r"enum class LinearKind .*?{(.*?)}", source, re.DOTALL)
        assert kinds
        known = {int(number): name.lower() for name, number in re.findall(r"(\w+) = (\d+),", kinds[1])}
        told = re.findall(r"(\d\d) ([A-Z][^,.]*)[,.]", inspect.getdoc(Barcodes) or "")
        self.assertEqual({int(n): re.sub(r"\W", "", name).lower() for n, name in told}, known)
        self.assertEqual(len(known), 9)


class Utf16(unittest.TestCase):
    def units(self, text: str) -> list[int]:
        copied = python.Utf16.from_param(text)
        return list((ctypes.c_uint16 * (len(copied) // 2)).from_buffer(copied))

    def test_text_is_copied_in_16_bit_units_and_ended_by_zero(self) -> None:
        self.assertEqual(self.units(""), [0])
        self.assertEqual(self.units("A\u20ac"), [0x41, 0x20AC, 0])

    def test_a_character_outside_the_first_plane_takes_two_units(self) -> None:
        self.assertEqual(self.units("\U0001f5a8"), [0xD83D, 0xDDA8, 0])

    def test_a_lone_surrogate_is_passed_on(self) -> None:
        self.assertEqual(self.units("\ud83d"), [0xD83D, 0])

    def test_no_text_is_a_null_pointer(self) -> None:
        self.assertIsNone(python.Utf16.from_param(None))

    def test_text_with_a_null_character_is_refused(self) -> None:
        with self.assertRaisesRegex(ValueError, "null character"):
            python.Utf16.from_param("a\0b")

    def test_bytes_are_refused(self) -> None:
        with self.assertRaisesRegex(TypeError, "text is expected, not bytes"):
            python.Utf16.from_param(b"a")  # type: ignore[arg-type]


if __name__ == "__main__":
    unittest.main()
