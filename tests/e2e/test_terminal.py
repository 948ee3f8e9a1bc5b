"""What a terminal gets from the programs: the line that says how far saving has come, and help that agrees with the
manual and the completions."""

import concurrent.futures
import contextlib
import fcntl
import os
import pty
import re
import shutil
import signal
import struct
import subprocess
import termios
import unittest

from harness import BIN, ROOT, HomeTest, kept_kinds

WIPE = "\r\x1b[K"


class Terminal(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.files = [self.write("a.jpg", b"x" * 1000), self.write("b.mov", b"")]
        os.truncate(self.files[1], 41_999_000)

    def on_terminal(self, *arguments, columns=80, kind="xterm", expect=0):
        """What sela-share writes to a terminal, as it writes it."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen([BIN / "sela-share", "--headless", "--tap", "addButton", *arguments], stderr=slave,
                                   env=self.environment | {"TERM": kind})
        os.close(slave)
        output = b""
        try:
            while block := os.read(master, 65536):
                output += block
        except OSError:
            pass  # the other side was closed
        os.close(master)
        self.assertEqual(process.wait(60), expect, output)
        return output.decode()

    def test_the_line_tells_how_far_it_is_and_goes(self):
        output = self.on_terminal(*self.files)
        drawn = output.split(WIPE)
        self.assertEqual((drawn[0], drawn[-1]), ("", ""))
        self.assertRegex(drawn[1], r"^Adding file 1 of 2: 1\.0 kB of 42\.0 MB, [\d.]+ [kM]?B/s$")
        for line in drawn[2:-1]:
            self.assertRegex(line, r"^Adding file 2 of 2: [\d.]+ MB of 42\.0 MB, [\d.]+ [kMG]?B/s$")
        self.assertEqual(len(self.ledger()), 2)

    def test_options_and_terminals_that_want_none_of_it(self):
        with concurrent.futures.ThreadPoolExecutor() as pool:
            runs = [pool.submit(self.on_terminal, option, *self.files, kind=kind)
                    for option, kind in [("--quiet", "xterm"), ("--headless", "dumb"), ("--verbose", "xterm")]]
        quiet, dumb, verbose = [run.result() for run in runs]
        self.assertEqual((quiet, dumb), ("", ""))
        self.assertIn("copyItem: readBytes = 0, totalReadBytes = 41999000\r\n", verbose)
        self.assertNotIn("Adding", verbose)

    def test_what_went_wrong_is_told_after_the_line_is_gone(self):
        files = [self.files[1], self.write("c.txt", b"x"), self.files[0]]
        drawn = self.on_terminal(*files, columns=20).split(WIPE)
        self.assertEqual(drawn[1], "Adding file 1 of 3:")
        self.assertEqual(
            drawn[-1], "sela-share: file 2 of 3 was not added: Unsupported file; those after it were not tried\r\n")
        failed = self.on_terminal(*files, "--tap", "noButton", expect=65)
        self.assertRegex(failed.split(WIPE)[-1], r"^sela-share: [^\r\n]*noButton[^\r\n]*\r\n$")


class Passcode(HomeTest):
    def test_is_not_shown_as_it_is_typed(self):
        self.provision()
        for typed, code in [(b"918273\n", 0), (b"9182\x03", -signal.SIGINT)]:
            process, terminal = pty.fork()
            if process == 0:
                os.execve(BIN / "sela-vault", ["sela-vault", "publish", self.home / "catalogue.json", "--passcode-file",
                                               "-"], self.environment)
            output = b""
            while not output.endswith(b"Passcode: "):
                output += os.read(terminal, 100)
            os.write(terminal, typed)
            self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), code)
            self.assertTrue(termios.tcgetattr(terminal)[3] & termios.ECHO)
            with contextlib.suppress(OSError):  # the other side is closed
                while block := os.read(terminal, 100):
                    output += block
            self.assertNotIn(b"9", output)
            os.close(terminal)
        self.share("--tap", "albumButton", "--type", "918273", "--tap", "row:0:0", self.write("a.jpg", b"x"), expect=3)


def options_of_help(text):
    return set(re.findall(r"(?<![\w-])(--?[a-z][a-z-]*)", text))


class Help(unittest.TestCase):
    """The help is what the programs know; the manual and the completions are written by hand."""

    # Understood by the card, and by the manual and the completions alone in builds without a clipboard.
    clipboard = {"--paste"}

    def help(self, program):
        return subprocess.run([BIN / program, "--help"], capture_output=True, text=True, check=True).stdout

    def manual(self, page):
        return (ROOT / "resources/man" / page).read_text().replace("\\-", "-")

    def test_options_are_the_same_everywhere(self):
        for program in ("sela-share", "sela-vault"):
            known = options_of_help(self.help(program))
            manual = set(re.findall(r"(?<![\w-])--?[a-z][a-z-]+|(?<![\w-])-[a-z]\b", self.manual(program + ".1")))
            self.assertLessEqual(known, manual | {"-h"}, program)
            for shell, pattern in [(f"{program}.bash", r"(?<![\w-])--[a-z][a-z-]*"), (f"_{program}", r"--[a-z][a-z-]*"),
                                   (f"{program}.fish", r"complete .*-l ([a-z-]+)")]:
                text = (ROOT / "resources/completions" / shell).read_text()
                found = {"--" + option.removeprefix("--") for option in re.findall(pattern, text)}
                words = {option for option in known if option.startswith("--")} - {"--help"}
                self.assertEqual(words - found, set(), shell)
                self.assertLessEqual(found - {"--help"} - self.clipboard, words | {"--covers"}, shell)

    def test_statuses_are_the_same_in_help_and_manual(self):
        for program, statuses in (("sela-share", "0 3 4 64 65"), ("sela-vault", "0 1 64")):
            lines = self.help(program).split("Exit status:\n")[1]
            told = dict(re.findall(r"^  (\d+) +(.+)$", lines, re.MULTILINE))
            section = self.manual(program + ".1").split(".SH EXIT STATUS\n")[1].split(".SH")[0]
            self.assertEqual(dict(re.findall(r"^\.B (\d+)\n(.+)$", section, re.MULTILINE)), told)
            self.assertEqual(" ".join(told), statuses)

    def test_the_manual_names_the_kinds_of_file_that_the_store_keeps(self):
        section = self.manual("sela-share.1").split("told by their names:\n")[1].split(".PP")[0]
        self.assertEqual(set(re.findall(r"^\.BR? ([a-z0-9-]+)", section, re.MULTILINE)), kept_kinds())

    @unittest.skipUnless(shutil.which("groff"), "needs groff")
    def test_the_manual_is_well_formed(self):
        for page in (ROOT / "resources/man").iterdir():
            result = subprocess.run(["groff", "-man", "-ww", "-z", "-Tutf8", page], capture_output=True, text=True)
            self.assertEqual(result.stderr, "", page)

    def test_bash_completes(self):
        def replies(script, *words):
            command = (f'complete() {{ :; }}; . "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _{script}; '
                       'printf "%s\\n" "${COMPREPLY[@]}"')
            file = ROOT / f"resources/completions/{script.replace('_', '-')}.bash"
            result = subprocess.run(["bash", "-c", command, file, *words], capture_output=True, text=True, check=True)
            self.assertEqual(result.stderr, "")
            return result.stdout.split()

        self.assertEqual(replies("sela_share", "sela-share", "--app"), ["--appearance"])
        self.assertEqual(replies("sela_share", "sela-share", "--appearance", ""), ["light", "dark"])
        self.assertEqual(replies("sela_share", "sela-share", "photo"), [])
        self.assertEqual(replies("sela_vault", "sela-vault", "im"), ["import"])
        self.assertEqual(replies("sela_vault", "sela-vault", "import", "--i"), ["--into"])
