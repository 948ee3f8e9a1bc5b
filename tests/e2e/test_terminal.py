"""The programs' output on a terminal: the progress line of saving, and a prompt without echo."""

import concurrent.futures
import contextlib
import fcntl
import os
import pty
import resource
import select
import signal
import struct
import subprocess
import termios

from harness import BIN, HomeTest

WIPE = "\r\x1b[K"


class Terminal(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()
        self.files = [self.write("a.jpg", b"x" * 1000), self.write("b.mov", b"")]
        os.truncate(self.files[1], 41_999_000)

    def on_terminal(self, *arguments, columns=80, kind="xterm", expect=0, preexec_fn=None):
        """What sela-share writes to a terminal, as it writes it."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen([BIN / "sela-share", "--headless", "--tap", "addButton", *arguments], stderr=slave,
                                   env=self.environment | {"TERM": kind}, preexec_fn=preexec_fn)
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
        self.assertEqual((drawn[0], drawn[-1]), ("", "sela-share: 2 files added to Default Album\r\n"))
        rate = r"[\d.]+ [kMG]?B/s(, [\w ]+ left)?$"
        self.assertRegex(drawn[1], r"^Adding file 1 of 2: 1\.0 kB of 42\.0 MB, " + rate)
        # A disk may take its time to flush the first file.
        for line in drawn[2:-1]:
            self.assertRegex(line, r"^Adding file (1 of 2: 1\.0 kB|2 of 2: [\d.]+ MB) of 42\.0 MB, " + rate)
        self.assertEqual(len(self.ledger()), 2)

    def test_a_terminal_that_is_stopped_stops_nothing(self):
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        termios.tcflow(slave, termios.TCOOFF)
        self.environment["TERM"] = "xterm"
        process = self.start(BIN / "sela-share", "--headless", "--tap", "addButton", *self.files, stderr=slave)
        os.close(slave)
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(len(self.ledger()), 2)

    def test_options_and_terminals_that_want_none_of_it(self):
        with concurrent.futures.ThreadPoolExecutor() as pool:
            runs = [pool.submit(self.on_terminal, option, *self.files, kind=kind)
                    for option, kind in [("--quiet", "xterm"), ("--headless", "dumb"), ("--verbose", "xterm")]]
        quiet, dumb, verbose = [run.result() for run in runs]
        self.assertEqual((quiet, dumb), ("", "sela-share: 2 files added to Default Album\r\n"))
        self.assertIn("copyItem: readBytes = 0, totalReadBytes = 41999000\r\n", verbose)
        self.assertNotIn("Adding", verbose)

    def test_what_went_wrong_is_told_after_the_line_is_gone(self):
        files = [self.files[1], self.write("c.mov", b""), *[self.write(f"{i}.jpg", b"x") for i in range(12)]]
        os.truncate(files[1], 60_000_000)
        drawn = self.on_terminal(*files, self.home, columns=20, expect=1, preexec_fn=lambda: resource.setrlimit(
            resource.RLIMIT_FSIZE, (50_000_000, 50_000_000))).split(WIPE)
        self.assertEqual(drawn[0], f"sela-share: {self.home}: it is a folder; name the files in it\r\n")
        self.assertEqual(drawn[1], "Adding file 1 of 14")
        self.assertEqual(drawn[-1], "sela-share: c.mov was not added: File too large\r\n"
                         f"sela-share: not tried: {', '.join(f'{i}.jpg' for i in range(10))} and 2 more\r\n"
                         "sela-share: 1 of 15 files added to Default Album\r\n")
        failed = self.on_terminal(*files, "--tap", "noButton", expect=65)
        self.assertRegex(failed.split(WIPE)[-1], r"^sela-share: noButton is not on the screen")


class Passcode(HomeTest):
    def test_is_not_shown_as_it_is_typed(self):
        self.provision()
        # Control-Z asks to stop, which takes effect only under a shell that can continue the program.
        for typed, code in [([b"918273\n"], 0), ([b"9182\x03"], -signal.SIGINT), ([b"9182\x1a", b"918273\n"], 0)]:
            process, terminal = pty.fork()
            if process == 0:
                os.execve(BIN / "sela-vault", ["sela-vault", "publish", self.home / "catalogue.json", "--passcode-file",
                                               "-"], self.environment)
            output = b""
            for prompts, keys in enumerate(typed, 1):
                while output.count(b"Passcode: ") < prompts:
                    self.assertTrue(select.select([terminal], [], [], 10)[0], output)
                    output += os.read(terminal, 100)
                os.write(terminal, keys)
            self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), code)
            self.assertTrue(termios.tcgetattr(terminal)[3] & termios.ECHO)
            with contextlib.suppress(OSError):  # the other side is closed
                while block := os.read(terminal, 100):
                    output += block
            self.assertNotIn(b"9", output)
            os.close(terminal)
        self.share("--tap", "albumButton", "--type", "918273", "--tap", "row:0:0", self.write("a.jpg", b"x"), expect=3)
