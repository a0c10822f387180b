#!/usr/bin/env python3
"""Holds the checks to their word: those of sources on small trees, that of the manual on small texts."""

import pathlib
import tempfile
import unittest

import include_check
from manual_examples import problems_of as problems_of_manual
from message_coverage import problems_of
from message_sources import SourceError

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

    def lay(self, name, content=""):
        path = self.root / name
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
            ("app/channel/a.h", '"app/inventory/limits.h"', False),
            ("wmi/a.cpp", '"app/cli/console/print.h"', False),
            ("wmi/a.cpp", '"platform/posix/other.h"', False),
            ("wmi/a.cpp", '"com.h"', False),
            ("wmi/a.cpp", "<vector>", True),
            ("wmi/a.cpp", "<windows.h>", False),
            ("platform/com.h", "<windows.h>", True),
            ("platform/posix/a.cpp", '"simhost/host.h"', False),
            ("platform/posix/a.cpp", "<nlohmann/json.hpp>", False),
            ("simhost/a.cpp", '"platform/posix/machine.h"', True),
            ("simhost/a.cpp", '"platform/posix/other.h"', False),
            ("simhost/a.cpp", "HEADER", False),
        ]
        for name, included, is_allowed in rows:
            with self.subTest(name=name, included=included):
                for header in self.HEADERS:
                    self.lay(header)
                self.lay(name, f"#pragma once\n # include {included}\n")
                found = list(include_check.violations(self.root))
                self.assertEqual([line.split(" ")[0] for line in found], [] if is_allowed else [f"{name}:2:"])
                self.lay(name)

    def test_systems_are_told_apart_in_the_platform_alone(self):
        self.lay("app/cli/a.cpp", "#if defined(_WIN32)\n#endif\n")
        self.lay("platform/a.h", "#ifdef _WIN32\n#endif\n")
        self.assertEqual([line.split(" ")[0] for line in include_check.violations(self.root)], ["app/cli/a.cpp:1:"])


class MessageCoverage(Trees):
    def problems(self, printed, exceptions=""):
        """What is wrong when this was printed on standard output."""
        self.lay("tests/message_exceptions.txt", exceptions)
        self.lay("printed/a.stdout", printed)
        return problems_of(self.root / "printed", self.root)

    def unprinted(self, call, printed):
        self.lay("app/print.h", PRINTERS)
        self.lay("app/a.cpp", f"void F() {{\n  {call};\n}}\n")
        return len(self.problems(printed + "-"))

    def test_what_counts_as_printed(self):
        rows = [
            (r'Print("a %d b\n", 1)', "a -12 b\n", 0),
            (r'Print("a %5u|%-5u|%05u.\n")', "x a     7|7    |00007.\n", 0),
            (r'Print("0x%x\n")', "0xdeadbeef\n", 0),
            (r'Print("0x%x\n")', "0xDEADBEEF\n", 1),
            (r'Print("%s: %s!\n", a, b)', "one: two\r\n!\n", 0),
            (r'Print("%s: %s!\n", a, b)', "one:\ntwo!\n", 1),
            ('Print("a" /* and */ "b\\n")', "ab\n", 0),
            (r'Print(x ? "one\n" : "two\n")', "one\n", 1),
            (r'Print(x ? "one\n" : "two\n")', "one\ntwo\n", 0),
            (r'Print("100%%\n")', "100%\n", 0),
            (r'PrintError("one\n")', "one\n", 1),
            (r'BoundedFormat(t, 8, "text %d", 1)', "", 0),
            ('// Print("comment")', "", 0),
            # A text that a longer message explains is not the shorter one's.
            (r'Print("Name = %s\n", n); Print("Name = N/A\n")', "Name = N/A\n", 1),
            (r'Print("Name = %s\n", n); Print("Name = N/A\n")', "Name = N/A\nName = x\n", 0),
        ]
        for call, printed, count in rows:
            with self.subTest(call=call, printed=printed):
                self.assertEqual(self.unprinted(call, printed), count)

    def test_equal_texts_of_two_classes_are_two_messages(self):
        for name in ("Class", "Request"):
            self.lay(f"wmi/{name}.cpp", TRACE.replace("kClass", "k" + name) + r'void F() { kTrace.Error("failed\n"); }')
        self.assertEqual(self.problems("(orbWmiClass):failed\n"),
                         [r"wmi/Request.cpp:4: no test prints (orbWmiRequest):'failed\n'"])
        self.assertEqual(self.problems("(orbWmiClass):failed\n(orbWmiRequest):failed\n"), [])

    def test_exceptions_hold_only_while_they_are_true(self):
        self.assertEqual(self.unprinted(r'Print("one\n")', "one\n"), 0)
        exception = 'app/a.cpp: "one\\n"\n    Nothing leads there.\n'
        for exceptions, printed, count in ((exception, "-", 0), (exception, "one\n", 1), ("", "", 1),
                                           (exception.replace("one", "two"), "one\n", 1)):
            self.assertEqual(len(self.problems(printed, exceptions)), count, (exceptions, printed))
        with self.assertRaises(SourceError):
            self.problems("-", 'app/a.cpp: "one\\n"\n')

    def test_printing_that_cannot_be_followed_is_refused(self):
        for call in ("Print(kText)", r'std::fputs("one\n", stdout)', r'Print("%ws\n", w)', r'Print("%p\n", p)'):
            with self.subTest(call=call), self.assertRaises(SourceError):
                self.unprinted(call, "one\n")


class OtherHost:
    """A directory where every command prints the same, and everything can be set."""

    def apply(self, word, text):
        pass

    def run(self, words, together):
        return (1, "one \n\ntwo\nthree\n", ""), []


class ManualExamples(unittest.TestCase):
    def test_what_holds(self):
        host, same = "<!-- host h -->\n", "<!-- same host -->\n<!-- remove f -->\n\n"
        rows = [
            (host, "$ korvex -a\none\n\ntwo\nthree\n$ echo $?\n1\n", 0),
            (host, "$ korvex -a\none\n...\nthree\n", 0),
            (host, "$ korvex -a\none\n\ntwo\n", 1),
            (host, "$ korvex -a\none\n...\ntwo\n$ korvex -a\n...\n", 1),
            (host, "$ korvex -a\none\ntwo\nthree\n", 1),
            (host, "$ korvex -a\n...\n$ echo $?\n0\n", 1),
            (host, "$ korvex -a\n...\n$ ls\n", 1),
            (host, "one\n$ korvex -a\n...\n", 1),
            (host + "Text.\n", "$ korvex -a\n...\n", 1),
            (same, "$ korvex -a\n...\n", 1),
            ("", "$ korvex -a\n...\n", 1),
        ]
        for comments, body, count in rows:
            with self.subTest(comments=comments, body=body):
                self.assertEqual(len(problems_of_manual(f"Text.\n\n{comments}```console\n{body}```\n", OtherHost)), count)
        block = f"```console\n{rows[0][1]}```\n"
        self.assertEqual(problems_of_manual(host + block + same + block, OtherHost), [])
        for manual in ("Text.\n", host + block + "```\n$ korvex -g 1\n```\n", host + block + "- list\n\n  " + block):
            self.assertEqual(len(problems_of_manual(manual, OtherHost)), 1, manual)


if __name__ == "__main__":
    unittest.main()
