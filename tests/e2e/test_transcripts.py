"""What people do in a terminal and what they are told: the console blocks of transcripts/*.md are done again, in a home of
its own for each file, and must come out the same. SELA_RENEW_TRANSCRIPTS=1 writes what comes out into the files."""

import difflib
import os
import pathlib
import re
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import BIN, ROOT, HomeTest

FILES = sorted((pathlib.Path(__file__).parent / "transcripts").glob("*.md")) + [ROOT / "docs/first-vault.md"]


class Terminal(HomeTest):
    def run_command(self, command):
        """What a command prints on both streams, followed by its status when that is not 0."""
        environment = self.environment | {"PATH": f"{BIN}:{os.environ['PATH']}", "SELA_REDUCED_MOTION": "1"}
        result = subprocess.run(["bash", "-c", command], cwd=self.home, env=environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        text = result.stdout.decode(errors="backslashreplace").replace(str(self.home), "~")
        text = re.sub(r"(?<!\d)\d{10}\.\d+", "TIME", text)
        return text.splitlines() + ([f"[{result.returncode}]"] if result.returncode else [])

    def played(self, text):
        """The lines of a text, with its commands done and what they print now."""
        in_console = False
        for line in text.splitlines():
            if line.startswith("```"):
                in_console = line == "```console"
            if line.startswith("$ ") and in_console:
                yield line
                yield from self.run_command(line[2:])
            elif not in_console or line.startswith("```"):
                yield line


class Transcripts(unittest.TestCase):
    maxDiff = None

    def test_transcripts(self):
        def play(file):
            terminal = Terminal()
            terminal.setUp()
            lines = list(terminal.played(file.read_text()))
            terminal.doCleanups()
            return lines

        with ThreadPoolExecutor(4) as pool:
            for file, lines in zip(FILES, pool.map(play, FILES)):
                if os.environ.get("SELA_RENEW_TRANSCRIPTS"):
                    file.write_text("\n".join(lines) + "\n")
                with self.subTest(file.name):
                    difference = difflib.unified_diff(file.read_text().splitlines(), lines, lineterm="")
                    self.assertEqual("\n".join(difference), "")


class Beginning(HomeTest):
    def test_all_that_tells_how_to_begin_tells_the_same(self):
        steps = re.search(r"    sela-vault init\n(?:    sela-.*\n){5}", (ROOT / "README.md").read_text())[0]
        for program in "sela-share", "sela-vault":
            manual = (BIN.parent / f"manuals/{program}.1").read_text().replace("\\-", "-")
            for text in self.run_program(program, "--help").stdout, manual:
                self.assertIn(steps.replace("    ", "  "), text)
