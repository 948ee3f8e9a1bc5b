"""The released programs carry the compiler's and the linker's protections."""

import json
import os
import pathlib
import re
import subprocess
import unittest

BIN = pathlib.Path(os.environ["SELA_BIN_DIR"])


def readelf(*arguments):
    return subprocess.run(["readelf", "--wide", *arguments], capture_output=True, check=True, text=True).stdout


class Hardening(unittest.TestCase):
    def test_every_program_is_hardened(self):
        programs = sorted(BIN.glob("sela-*"))
        self.assertGreaterEqual(len(programs), 4)
        fortified = 0
        for program in programs:
            with self.subTest(program.name):
                self.assertRegex(readelf("--file-header", program), r"Type:\s+DYN")
                dynamic = readelf("--dynamic", program)
                self.assertRegex(dynamic, r"FLAGS_1\).*\bNOW\b.*\bPIE\b")
                self.assertNotRegex(dynamic, "TEXTREL|RPATH")
                segments = readelf("--program-headers", program)
                self.assertIn("GNU_RELRO", segments)
                self.assertRegex(segments, r"GNU_STACK.* RW ")
                self.assertNotRegex(segments, r"LOAD.* RWE ")
                symbols = readelf("--dyn-syms", program)
                self.assertIn("__stack_chk_fail", symbols)
                self.assertIn("__glibcxx_assert_fail", symbols)
                fortified += bool(re.search(r"__\w+_chk@", symbols))
        # These leave no trace in a program.
        for entry in json.loads((BIN.parent / "compile_commands.json").read_text()):
            if "/src/" in entry["file"]:
                for flag in ("-fstack-clash-protection", "-ftrivial-auto-var-init=zero"):
                    self.assertIn(flag, entry["command"], entry["file"])
        # The video helper and the service make no call whose bounds are known only at run time.
        self.assertGreaterEqual(fortified, len(programs) - 2)

    def test_functions_begin_where_indirect_branches_may_go(self):
        mark = {"X86-64": b"\xf3\x0f\x1e\xfa", "AArch64": b"\x5f\x24\x03\xd5"}  # endbr64, bti c
        for program in sorted(BIN.glob("sela-*")):
            machine = re.search(r"Machine:.*\s(\S+)$", readelf("--file-header", program), re.MULTILINE)[1]
            # Debian's start files lack the note that says so for the whole program, so the code is checked.
            text = re.search(r"\.text\s+PROGBITS\s+\w+ (\w+) (\w+)", readelf("--section-headers", program))
            start, size = int(text[1], 16), int(text[2], 16)
            code = program.read_bytes()[start:start + size]
            self.assertGreater(code.count(mark[machine]), 50, program.name)


if __name__ == "__main__":
    unittest.main()
