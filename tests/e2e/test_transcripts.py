"""What people do in a terminal and what they are told: each console block of transcripts/*.md and of the documents named
here is done again, in a home of its own for each file, and must come out the same. SELA_RENEW_TRANSCRIPTS=1 writes what
comes out into the files."""

import os
import pathlib
import re
import subprocess

from harness import BIN, HomeTest

FILES = sorted((pathlib.Path(__file__).parent / "transcripts").glob("*.md"))


class Transcripts(HomeTest):
    maxDiff = None

    def run_command(self, command):
        """What a command prints on both streams, followed by its status when that is not 0."""
        result = subprocess.run(["bash", "-c", command], cwd=self.home, stdin=subprocess.DEVNULL, timeout=120,
                                env=self.environment | {"PATH": f"{BIN}:{os.environ['PATH']}", "SELA_REDUCED_MOTION": "1"},
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        text = result.stdout.decode(errors="backslashreplace").replace(str(self.home), "~")
        text = re.sub(r"\b\d{10}\.\d+", "TIME", text)
        return text.splitlines() + ([f"[{result.returncode}]"] if result.returncode else [])

    def played(self, text):
        """The text with its commands done and what they print now."""
        in_console = False
        for line in text.splitlines():
            if line.startswith("```"):
                in_console = line == "```console"
            if line.startswith("$ ") and in_console:
                yield line
                yield from self.run_command(line[2:])
            elif not in_console or line.startswith("```"):
                yield line

    def test_transcripts(self):
        for file in FILES:
            with self.subTest(file.name):
                self.setUp()
                text = "\n".join(self.played(file.read_text())) + "\n"
                if os.environ.get("SELA_RENEW_TRANSCRIPTS"):
                    file.write_text(text)
                self.assertEqual(file.read_text().splitlines(), text.splitlines())
