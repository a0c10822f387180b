#!/usr/bin/env python3
"""Holds the runner itself to its word: a right transcript holds, and whatever is wrong in one is found.

The program here is a stand-in that does what its first word says, in Python.
"""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

import run
from runner.notation import TranscriptError, decode_line, encode_line
from runner.transcript import parse, split_words
from runner.windows import WindowsProgram

STAND_IN = f"""#!{sys.executable} -IS
import json, os, sys
audit = {{"bstrs": 1, "safearrays": 0, "handles": 0, "coercions": 0, "stores": {{"gDsmChannel": 1}},
         "interfaces": {{"IWbemLocator": 1, "IWbemServices": 1, "IWbemClassObject": 2, "IEnumWbemClassObject": 2,
                        "IClientSecurity": 0}}, "calls": {{"ExecMethod": 3}}}}
def out(data): os.write(1, data)
def err(data): os.write(2, data)
status = 0
exec(sys.argv[1])
if audit: open("host.audit", "a").write(json.dumps(audit) + "\\n")
os._exit(status)
"""

HOLDS = r"""
# A scene with everything in it.
host some
patch {"name": null, "list": [1, 2],
  "more": {"deep": "\u00e9"}}
edit /list/0 removed
edit /more/a~1b = [{}]
edit /more/a~1b/- = 3
file laid.txt
> one\x00
> two\

$ korvex "out(b'ready \\n'); err(b'half'); out(b'way\\n\\n'); err(b' done' + os.fsencode(sys.argv[2])); status = 255" "\xFF"
| ready\s
! half\
| way
|
!  done\xFF\
exit 255

$ korvex "import json; h = json.load(open('host.json')); assert h == {'list': [2], 'more': {'deep': '\\xE9', 'a/b': [{}, 3]}}, h"
exit 0

$ korvex "[(out(b'x\\n'), err(b'y\\n')) for i in range(4)]; out(sys.stdin.buffer.read() + b'\\n')"
< typed
repeat 4
| x
! y
end
| typed
|
exit 0

$ korvex "a = id(audit); out(b'%016X \<pointer> GetRdacInfo: \<address>;Buff(0x%x)\\n' % (a, a & 0xFFFFFFFF)); open('new.txt', 'wb').write(b'z' * 300); os.remove('laid.txt')" *1
| <pointer> \<pointer> GetRdacInfo: \<address>;Buff(0x<address>)
exit 0
left new.txt
> \{300 z}\
left laid.txt absent
left other.txt absent
calls ExecMethod 3
"""

# Each of these changes makes HOLDS false; the runner must say the text beside it.
FALSE = [
    ("| ready\\s", "| ready", "standard output"),
    ("|\n!  done", "!  done", "standard output"),
    ("!  done\\xFF\\", "!  done\\xFF", "standard error"),
    ("| ready\\s\n! half\\\n", "! half\\\n| ready\\s\n", "order of the two streams"),
    ("exit 255", "exit 1", "exit 255"),
    ("edit /list/0 removed", "edit /list/1 removed", "AssertionError"),
    ("repeat 4", "repeat 3", "standard output"),
    ("| <pointer> ", "| 000000000000000A ", "standard output"),
    ("id(audit)", "0", "standard output"),
    ("a & 0xFFFFFFFF", "a & 0xFFFFFFFF | 1 << 32", "standard output"),
    ("> \\{300 z}\\", "> \\{299 z}\\", "new.txt"),
    ("left laid.txt absent\n", "", "laid.txt was changed"),
    ("left laid.txt absent", "left laid.txt directory", "laid.txt is nothing"),
    ("left other.txt absent", "left other.txt", "other.txt is nothing"),
    ("calls ExecMethod 3", "calls ExecMethod 2", "ExecMethod was called 3 times"),
    ("status = 255", "status = 255; audit['bstrs'] = 2", "bstrs: 2"),
    ("status = 255", "status = 255; audit['interfaces']['IClientSecurity'] = 1", "interface IClientSecurity: 1"),
    ("status = 255", "status = 255; audit['stores']['gOther'] = 1", "store gOther: 1"),
    ("status = 255", "status = 255; audit = None", "0 audit lines"),
    ("status = 255", "status = 255; import time; time.sleep(60)", "too long"),
    ("status = 255", "os.kill(os.getpid(), 6)", "exit -6"),
    ("host some", "hots some", "unknown setting 'hots'"),
    ("end\n", "", "'repeat' without 'end'"),
    ("edit /list/0", "edit /list/7", "leads nowhere"),
]


class Replaying(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.place = pathlib.Path(scratch.name)
        self.program = self.place / "stand-in"
        self.program.write_text(STAND_IN)
        self.program.chmod(0o755)
        (self.place / "some.json").write_text('{"name": "n", "list": []}')
        self.file = self.place / "case.transcript"

    def run_it(self, source, *options):
        """Whether the transcript holds, and what the runner says."""
        self.file.write_text(source)
        said = io.StringIO()
        arguments = ["run.py", str(self.file), "--binary", str(self.program), "--hosts", str(self.place), "--work",
                     str(self.place / "work"), "--printed", str(self.place), *options]
        with mock.patch.object(sys, "argv", arguments), contextlib.redirect_stdout(said):
            with self.assertRaises(SystemExit) as ended:
                run.main()
        return ended.exception.code == 0, said.getvalue()

    def test_a_right_transcript_holds(self):
        self.assertEqual(self.run_it(HOLDS), (True, ""))
        self.assertIn(b"half done\xff\n", (self.place / "case.stderr").read_bytes())

    def test_whatever_is_wrong_is_found(self):
        for old, new, said in FALSE:
            with self.subTest(said=said, old=old, new=new):
                self.assertEqual(HOLDS.count(old), 1, "the change is not to be made in just one place")
                holds, report = self.run_it(HOLDS.replace(old, new), "--timeout", "2" if said == "too long" else "60")
                self.assertFalse(holds)
                self.assertIn(said, report)

    def test_cases_begin_afresh(self):
        self.assertEqual(self.run_it("host none\n== One\n$ korvex \"open('a', 'w')\"\nexit 0\nleft a\n\n"
                                     "== Two\n$ korvex \"assert sorted(os.listdir()) == ['host.audit', 'korvex']\"\n"
                                     "exit 0\nleft a absent\n"), (True, ""))

    def test_rewriting_gives_back_what_holds(self):
        bare = "\n".join(line for line in HOLDS.splitlines() if line[:1] not in ("|", "!")
                         and line not in ("exit 0", "exit 255", "end", "repeat 4", "> \\{300 z}\\"))
        _, shown = self.run_it(bare.replace("for i in range(4)", "for i in range(40)"), "--rewrite")
        self.assertIn("+| ready\\s", shown)
        wanted = HOLDS.replace("range(4)", "range(40)").replace("repeat 4\n", "repeat 40\n")
        self.assertEqual(self.file.read_text().strip(), wanted.strip())


class OnWindows(unittest.TestCase):
    def setUp(self):
        self.program = WindowsProgram(pathlib.Path("build/korvex.exe"), "C:\\korvex")

    def test_what_only_the_simulated_machine_has_is_passed_over(self):
        case, other = parse("== One\n$ a 1\nexit 0\nsimulated x\n\n$ a 2\nexit 0\n\nsimulated y\n$ a 3\n== Two\n$ a 4\n")
        self.assertEqual([step.words for step in self.program.possible(case.steps)], [["a", "2"]])
        self.assertEqual([step.words for step in self.program.possible(other.steps)], [["a", "4"]])
        with self.assertRaises(TranscriptError):
            parse("$ a\nexit 0\nsimulated\n")

    def test_only_what_the_machine_changes_is_hidden(self):
        printed = ("Usage: Z:\\d\\korvex.exe\r\nZ:\\d\\x: Access denied.\r\r\nAccess denied.\r\nHostname    = a\r\n"
                   "Hostnames = a\r\n")
        shown = self.program.shown(printed, pathlib.Path("/d"))
        self.assertEqual(shown, "Usage: korvex\nC:\\korvex\\x: Access is denied.\r\nAccess denied.\nHostname    = a\nHostnames = a\n")
        self.assertTrue(self.program.comparable(shown).endswith(".\nHostname    =\nHostnames = a\n"))

    def test_words_arrive_in_the_ansi_code_page(self):
        words = self.program.words(pathlib.Path("/d"), ["korvex", "a\xe9\x80\x81"])[1]
        self.assertEqual(words[-1].decode(), "a\u00e9\u20ac\u0081")


class Notation(unittest.TestCase):
    def test_every_byte_survives(self):
        everything = "".join(map(chr, range(256))).replace("\n", "") + "<pointer><address>" + "}" * 300 + " "
        for line in (everything + "\n", everything, "\n", "\\", "\\\n", " \n", " "):
            written = encode_line("|", line)
            self.assertTrue(written.isprintable() and written.isascii(), written)
            self.assertEqual(decode_line(written[1:]), line)

    def test_what_could_be_misread_is_refused(self):
        for source in ("a", " a ", " \\", " a\\q", " a\\x1", " \\xff", " \\{3 a", " \u00e9", " a\tb"):
            with self.assertRaises(TranscriptError, msg=source):
                decode_line(source)
        for source in ('"open', "a\\b", "\u00e9", ""):
            with self.assertRaises(TranscriptError, msg=source):
                split_words(source)

    def test_words(self):
        self.assertEqual(split_words(r'korvex  -a "" "two words" -P"\"\xE9" *2 "\{2 ab}"'),
                         ["korvex", "-a", "", "two words", '-P"\xe9', '-P"\xe9', "abab"])


if __name__ == "__main__":
    unittest.main()
