#!/usr/bin/env python3
"""Holds the include check and the message coverage to their word, on small trees made for it."""

import pathlib
import tempfile
import unittest

import include_check
import message_coverage
from coverage.formats import FormatError
from coverage.messages import SourceError, messages_of
from coverage.printed import PrintedTexts

PRINTERS = """
void Print(const char* format, ...) __attribute__((format(printf, 1, 2)));
void PrintError(const char* format, ...);
int BoundedFormat(char* text, unsigned long capacity, const char* format, ...);
"""
TRACE = """
constexpr CategoryTrace kTrace{WmiLayerTrace::kClass};
void Error(const char* format, ...) const;
"""


class Trees(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)

    def lay(self, **files):
        """Files by their paths, written with __ for / and _dot_ for the last dot."""
        for name, content in files.items():
            path = self.root / name.replace("__", "/").replace("_dot_", ".")
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content)


class IncludeCheck(Trees):
    HEADERS = ("app/cli/usage.h", "app/cli/console/print.h", "app/report/time_text.h", "app/channel/ioctl.h", "wmi/wmi.h",
               "app/inventory/limits.h", "platform/com.h", "platform/posix/machine.h", "platform/posix/other.h", "simhost/host.h")

    def test_arrows(self):
        rows = [
            ("app/cli/a.cpp", '"app/report/time_text.h"', True),
            ("app/cli/a.cpp", '"simhost/host.h"', False),
            ("app/cli/console/a.cpp", '"app/cli/usage.h"', False),
            ("app/report/a.cpp", '"app/inventory/limits.h"', True),
            ("app/inventory/a.cpp", '"app/report/time_text.h"', False),
            ("app/channel/a.h", '"app/inventory/limits.h"', False),
            ("app/channel/a.h", '"wmi/wmi.h" // why', True),
            ("wmi/a.cpp", '"app/cli/console/print.h"', False),
            ("wmi/a.cpp", '"platform/com.h"', True),
            ("wmi/a.cpp", '"platform/posix/other.h"', False),
            ("wmi/a.cpp", '"com.h"', False),
            ("wmi/a.cpp", "<vector>", True),
            ("wmi/a.cpp", "<windows.h>", False),
            ("app/main.cpp", "<unistd.h>", False),
            ("platform/com.h", "<windows.h>", True),
            ("platform/com.h", '"platform/posix/other.h"', False),
            ("platform/posix/a.cpp", "<unistd.h>", True),
            ("platform/posix/a.cpp", '"simhost/host.h"', False),
            ("platform/posix/a.cpp", "<nlohmann/json.hpp>", False),
            ("simhost/a.cpp", '"platform/posix/machine.h"', True),
            ("simhost/a.cpp", '"platform/posix/other.h"', False),
            ("simhost/a.cpp", '"wmi/wmi.h"', False),
            ("simhost/a.cpp", "HEADER", False),
        ]
        for name, included, is_allowed in rows:
            with self.subTest(name=name, included=included):
                self.lay(**{header: "" for header in self.HEADERS})
                self.lay(**{name: f"#pragma once\n # include {included}\n"})
                found = list(include_check.violations(self.root))
                self.assertEqual(len(found), 0 if is_allowed else 1, found)
                self.assertTrue(is_allowed or found[0].startswith(f"{name}:2: "), found)
                (self.root / name).write_text("")

    def test_systems_are_told_apart_in_the_platform_alone(self):
        self.lay(app__cli__a_dot_cpp="#if defined(_WIN32)\n#endif\n", platform__a_dot_h="#ifdef _WIN32\n#endif\n")
        self.assertEqual([line.split(" ")[0] for line in include_check.violations(self.root)], ["app/cli/a.cpp:1:"])


class MessageCoverage(Trees):
    def problems(self, exceptions="", errors="", **printed):
        """The formats said to be unprinted, or other problems as they stand."""
        self.lay(tests__message_exceptions_dot_txt=exceptions, printed__a_dot_stderr=errors)
        self.lay(**{f"printed__{name}_dot_stdout": text for name, text in printed.items()})
        known = message_coverage.read_exceptions(self.root / "tests/message_exceptions.txt")
        return message_coverage.problems_of(messages_of(self.root), PrintedTexts(self.root / "printed"), known)

    def unprinted(self, call, printed):
        self.lay(app__print_dot_h=PRINTERS, app__a_dot_cpp=f"void F() {{\n  {call};\n}}\n")
        return len(self.problems(errors="-", a=printed))

    def test_what_counts_as_printed(self):
        rows = [
            (r'Print("a %d b\n", 1)', "a -12 b\n", 0),
            (r'Print("a %d b\n", 1)', "a x b\n", 1),
            (r'Print("a %5u|%-5u|%05u.\n")', "x a     7|7    |00007.\n", 0),
            (r'Print("0x%x\n")', "0xdeadbeef\n", 0),
            (r'Print("0x%x\n")', "0xDEADBEEF\n", 1),
            (r'Print("%s: %s!\n", a, b)', "one: two\r\n!\n", 0),
            (r'Print("%s: %s!\n", a, b)', "one:\ntwo!\n", 1),
            ('Print("a" /* and */ "b\\n")', "ab\n", 0),
            (r'Print(x ? "one\n" : "two\n")', "one\n", 1),
            (r'Print(x ? "one\n" : "two\n")', "one\ntwo\n", 0),
            (r'Print("100%%\n")', "100%\n", 0),
            (r'Print("(%s, %c)\n", G(1, "no message"), c)', "(, c)\n", 0),
            (r'PrintError("one\n")', "one\n", 1),
            (r'BoundedFormat(t, 8, "text %d", 1)', "", 0),
            ('// Print("comment")', "", 0),
            # A text that a longer message explains is not the shorter one's.
            (r'Print("Name = %s\n", n); Print("Name = N/A\n")', "Name = N/A\n", 1),
            (r'Print("Name = %s\n", n); Print("Name = N/A\n")', "Name = N/A\nName = x\n", 0),
            (r'Print("init\n"); Print("Class init\n")', "Class init\n", 1),
        ]
        for call, printed, count in rows:
            with self.subTest(call=call, printed=printed):
                self.assertEqual(self.unprinted(call, printed), count)

    def test_equal_texts_of_two_classes_are_two_messages(self):
        for category in ("kClass", "kRequest"):
            self.lay(**{f"wmi/{category}_dot_cpp": TRACE.replace("kClass", category) + r'void F() { kTrace.Error("failed\n"); }'})
        self.assertEqual(self.problems(a="(orbWmiClass):failed\n"),
                         [r"wmi/kRequest.cpp:4: no test prints 'failed\n' after (orbWmiRequest):"])
        self.assertEqual(self.problems(a="(orbWmiClass):failed\n(orbWmiRequest):failed\n"), [])

    def test_exceptions_hold_only_while_they_are_true(self):
        self.lay(app__print_dot_h=PRINTERS, app__a_dot_cpp=r'void F() { Print("one\n"); }')
        exception = 'app/a.cpp: "one\\n"\n    Nothing leads there.\n'
        self.assertEqual(self.problems(exception, a="-"), [])
        self.assertEqual(len(self.problems(exception, a="one\n")), 1)
        self.assertEqual(len(self.problems(exception.replace("one", "two"), a="one\n")), 1)
        self.assertEqual(len(self.problems(a="")), 1)
        with self.assertRaises(SourceError):
            self.problems('app/a.cpp: "one\\n"\n', a="-")

    def test_printing_that_cannot_be_followed_is_refused(self):
        for call, error in (("Print(kText)", SourceError), (r'std::fputs("one\n", stdout)', SourceError),
                            (r'Print("%ws\n", w)', FormatError), (r'Print("%p\n", p)', FormatError)):
            with self.subTest(call=call), self.assertRaises(error):
                self.unprinted(call, "one\n")


if __name__ == "__main__":
    unittest.main()
