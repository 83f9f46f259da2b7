"""The declarations for .NET are those of the headers."""

import re
import unittest
from dataclasses import dataclass

import header

SOURCE = (header.API.parent / "bindings" / "dotnet" / "NadrelPrinter.cs").read_text()

UTF16 = "[MarshalAs(UnmanagedType.LPWStr)] string"
ARGUMENTS = {
    "int32_t": {"int"},
    "uint32_t": {"uint"},
    "uint8_t": {"byte"},
    "const NadrelChar *": {UTF16},
    "const char *": {"[MarshalAs(UnmanagedType.LPStr)] string", "byte[]"},
    "const uint8_t *": {"byte[]"},
    "NadrelNotificationHandler": {"NotificationHandler"},
    "void *": {"IntPtr"},
    "NadrelLinkReport *": {"ref LinkReport"},
}
# A returned string stays the library's, so it must not come back as a string, which .NET would free.
RESULTS = {"void": "void", "int32_t": "int", "const char *": "IntPtr", "NadrelHandle": "IntPtr"}
FIELDS = {"uint32_t": "uint", "uint64_t": "ulong"}

IMPORT = "[DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]"


@dataclass(frozen=True)
class Declared:
    result: str
    parameters: list[tuple[str, str]]  # type, name


def declared() -> dict[str, Declared]:
    pattern = re.escape(IMPORT) + r"\s*public static extern (\w+) (\w+)\((.*?)\);"
    return {
        name: Declared(result, [_parameter(p) for p in parameters.split(",") if p.strip()])
        for result, name, parameters in re.findall(pattern, SOURCE, re.DOTALL)
    }


def _parameter(text: str) -> tuple[str, str]:
    kind, name = " ".join(text.split()).rsplit(" ", 1)
    return kind, name


class Dotnet(unittest.TestCase):
    headers = {**header.functions("NadrelPrinter.h"), **header.functions("NadrelHost.h")}

    def test_every_import_is_cdecl_and_spelled_exactly(self) -> None:
        self.assertEqual(SOURCE.count("DllImport"), SOURCE.count(IMPORT))
        self.assertEqual(SOURCE.count("extern"), SOURCE.count(IMPORT))

    def test_every_function_of_the_headers_is_declared_and_no_other(self) -> None:
        self.assertEqual(list(declared()), list(self.headers))
        names = header.exported("NadrelPrinter.exports") + header.exported("NadrelHost.exports")
        self.assertEqual(sorted(declared()), sorted(names))

    def test_results_and_arguments_are_those_of_the_headers(self) -> None:
        for name, in_dotnet in declared().items():
            function = self.headers[name]
            with self.subTest(name):
                self.assertEqual(in_dotnet.result, RESULTS[function.result])
                self.assertEqual([p[1] for p in in_dotnet.parameters], [p.name for p in function.parameters])
                for (kind, _), parameter in zip(in_dotnet.parameters, function.parameters, strict=True):
                    self.assertIn(kind, ARGUMENTS[parameter.type])

    def test_what_the_headers_own_names_stand_for_is_what_the_declarations_take_them_for(self) -> None:
        units = ("char16_t", "wchar_t", "char16_t", "char16_t")  # the second on Windows, of 16 bits there
        for name, meaning in {
            "NADREL_CALL": ["__cdecl", ""],  # Cdecl
            "NadrelChar": [f"{unit} NadrelChar" for unit in units],  # LPWStr
            "NadrelHandle": ["intptr_t NadrelHandle"],  # IntPtr
            "NADREL_INVALID_HANDLE": ["((NadrelHandle)-1)"],
        }.items():
            self.assertEqual(header.definitions("NadrelPrinter.h", name), meaning)
        self.assertIn("IntPtr NADREL_INVALID_HANDLE = new IntPtr(-1);", SOURCE)

    def test_the_handler_is_the_one_of_the_header(self) -> None:
        handler = "(uint32_t message, uint32_t wParam, intptr_t lParam, void *context)"
        self.assertEqual(
            header.definitions("NadrelHost.h", "NadrelNotificationHandler"),
            ["void (*NadrelNotificationHandler)" + handler],
        )
        self.assertIn(
            "[UnmanagedFunctionPointer(CallingConvention.Cdecl)]\n    public delegate void "
            "NotificationHandler(uint message, uint wParam, IntPtr lParam, IntPtr context);",
            SOURCE,
        )

    def test_the_link_report_has_the_fields_of_the_header(self) -> None:
        body = re.search(r"LayoutKind.Sequential\)\]\s*public struct LinkReport\s*{(.*?)}", SOURCE, re.DOTALL)
        assert body
        fields = re.findall(r"public (\w+) (\w+);", body[1])
        expected = header.structure_fields("NadrelHost.h", "NadrelLinkReport")
        self.assertEqual(fields, [(FIELDS[f.type], f.name[0].upper() + f.name[1:]) for f in expected])

    def test_the_results_have_the_names_and_values_of_the_header(self) -> None:
        text = (header.API / "NadrelPrinter.h").read_text()
        expected = re.findall(r"^\s+((?:ERR|NADREL)_\w+) = (-?\d+)", text, re.MULTILINE)
        self.assertEqual(re.findall(r"public const int (\w+) = (-?\d+);", SOURCE), expected)
        self.assertEqual(len(expected), 9)


if __name__ == "__main__":
    unittest.main()
