"""Malicious files, names, ledgers and settings."""

import json
import os
import pathlib
import re
import resource
import signal
import sqlite3
import subprocess
import time
import unittest

from harness import BIN, CATALOGUE, PNG, HomeTest

# Terminal escapes, line ends, and overrides of the text direction.
HARMFUL = re.compile("[\x00-\x09\x0b-\x1f\x7f-\x9f\u200e\u200f\u061c\u2028-\u202e\u2066-\u2069]")

NAMES = [
    b"\x1b]0;title\x07\x1b[2J\x1b[31m.jpg", b"\xc2\x9b31m.jpg", b"two\nlines\r.jpg", "left\u202egpj.mp4".encode(),
    "\u2066isolated\u2069.png".encode(), "line\u2028separator.gif".encode(), b"tab\tbell\x07.jpg", b"\xff\xfe\x1b.jpg",
    b"...jpg", b"..\\..\\a.jpg", b"-rf.jpg", b" .jpg", b"%n%s%@.jpg", b"$(touch pwned).jpg", b"'\";.jpg",
    "\u00e9.jpg".encode(), "e\u0301.jpg".encode(), b"A.JPG", b"a.jpg", b"CON.jpg", b"n" * 230 + b".jpg",
]


class HostileTest(HomeTest):
    def setUp(self):
        super().setUp()
        self.provision()

    def run_program(self, name, *arguments, **options):
        """As the base class does, and checks that the output has nothing harmful to a terminal."""
        result = super().run_program(name, *arguments, **options)
        for text in (result.stdout, result.stderr):
            found = HARMFUL.search(text)
            self.assertIsNone(found, found and text[max(0, found.start() - 80):found.end() + 80].encode())
        return result

    def tree(self, folder):
        return {os.path.join(os.fsencode(path), name) for path, folders, files in os.walk(os.fsencode(folder))
                for name in folders + files}

    def import_all(self, **options):
        """Imports, and checks that nothing was made outside of the import's folder."""
        def outside():
            return {path for path in self.tree(self.home)
                    if not path.startswith((bytes(self.home / "into"), bytes(self.settings)))}

        before = outside()
        result = self.vault("import", "--into", self.home / "into", **options)
        self.assertLessEqual(outside(), before)
        for path in self.tree(self.home / "into"):
            self.assertIsNone(re.search("[\x00-\x1f\x7f-\x9f\u202a-\u202e\u2066-\u2069]", os.fsdecode(path)), path)
        return result


class Names(HostileTest):
    def test_reach_the_album_and_no_terminal(self):
        files = [self.write(b"source/" + name, b"%d" % number) for number, name in enumerate(NAMES)]
        self.share("--tap", "addButton", "--", *files)
        self.assertEqual(len(self.ledger()), len(NAMES))
        self.assertEqual(json.loads(self.vault("ledger", "--json").stdout), self.ledger())
        self.assertEqual(len(self.vault("ledger").stdout.splitlines()), 1 + len(NAMES))
        self.import_all()
        album = self.home / "into/vault/Default Album"
        contents = sorted((album / name).read_bytes() for name in os.listdir(album))
        self.assertEqual(contents, sorted(b"%d" % number for number in range(len(NAMES))))


class SomebodyElsesGroup(HostileTest):
    EVIL = "\x1b[31m\u202e\u009b\n../../evil"

    def test_a_ledger_leads_nowhere_else(self):
        outside = pathlib.Path(self.write("outside.jpg", b"outside"))
        self.items.mkdir(exist_ok=True)
        for name in ("1.jpg", "2.jpg", "3.jpg"):
            (self.items / name).write_bytes(name.encode())
        os.symlink(outside, self.items / "link.jpg")
        os.mkfifo(self.items / "fifo.jpg")
        records = {
            "a": {"fileName": "1.jpg", "albumNames": ["..", "/", "", ".", self.EVIL], "preferredName": self.EVIL},
            "b": {"fileName": "2.jpg", "albumNames": ["../../.."] * 3, "preferredName": str(self.home / "evil.jpg")},
            "c": {"fileName": "3.jpg", "albumNames": ["x" * 300] * 3, "preferredName": "\0" + "y" * 400},
            "d": {"fileName": "../../../../../../outside.jpg", "albumNames": []},
            "e": {"fileName": str(outside), "albumNames": []},
            "f": {"fileName": "link.jpg", "albumNames": []},
            "g": {"fileName": "fifo.jpg", "albumNames": []},
            "h": {"fileName": "1.jpg", "albumNames": ["deep"] * 3000},
            self.EVIL: {"fileName": self.EVIL, "albumNames": [self.EVIL]},
        }
        self.put_setting("sharedItems", json.dumps({key: {"fake": False, **record} for key, record in records.items()}))
        self.put_setting("sharedItems.unreadable." + self.EVIL, "{")
        self.assertEqual(json.loads(self.vault("ledger", "--json").stdout), self.ledger())
        self.vault("ledger")
        result = self.import_all(expect=1)
        self.assertEqual(len(result.stdout.splitlines()), 4)  # one for each file, and the summary
        self.assertEqual(outside.read_bytes(), b"outside")
        placed = [path for path in (self.home / "into").rglob("*") if path.is_file()]
        self.assertEqual(sorted(path.read_bytes() for path in placed), [b"1.jpg", b"2.jpg", b"3.jpg"])
        self.assertEqual(set(self.ledger()), set(records) - {"a", "b", "c"})

    def test_a_catalogue_shows_nothing_harmful(self):
        self.put_setting("sharedAlbums", json.dumps(
            [{"namePath": [self.EVIL], "fake": False, "thumbNailName": self.EVIL},
             {"namePath": [self.EVIL, "child"], "fake": False}, {"namePath": ["d" * 100_000], "fake": False}]))
        self.vault("album", "list")
        self.share("--tap", "albumButton", "--type", "123456", "--tap", "showChildButton:0", "--tap", "row:0:1",
                   "--tap", "addButton", self.write("a.jpg", b"x"))
        self.assertEqual([entry["albumNames"] for entry in self.ledger().values()], [[self.EVIL, "child"]])
        self.import_all()

    def test_settings_that_are_a_program_are_not_run(self):
        for schema in [
            "DROP TABLE settings; CREATE VIEW settings AS WITH RECURSIVE n(key) AS "
            "(SELECT 'a' UNION ALL SELECT key FROM n) SELECT key, 'text' AS kind, key AS value FROM n",
            "CREATE TRIGGER t BEFORE INSERT ON settings BEGIN DELETE FROM settings; END",
        ]:
            original = self.settings.read_bytes()
            with sqlite3.connect(self.settings) as connection:
                connection.executescript(schema)
            self.add(self.write("a.jpg", b"x"), expect=None)
            self.vault("ledger", expect=None)
            with sqlite3.connect(self.settings) as connection:
                if "TRIGGER" in schema:
                    self.assertGreater(connection.execute("SELECT count(*) FROM settings").fetchone()[0], 2)
            self.settings.write_bytes(original)


class Attachments(HostileTest):
    """Special files, and files that are changed or replaced meanwhile."""

    def test_files_without_a_size_or_without_an_end_stop_nothing(self):
        running = []
        for number, target in enumerate(["/proc/cpuinfo", "/proc/self/mem", "/proc/kmsg", "/proc/kcore",
                                         "/sys/kernel/debug/tracing/trace_pipe"]):
            for ending in ("", ".jpg", ".mp4"):
                link = self.home / f"{number}{ending}"
                os.symlink(target, link)
                running.append((link, self.start_share("--tap", "addButton", link)))
        for link, process in running:
            self.assertIn(self.end(process), (1, 4, 64), link)
        self.assertEqual(self.ledger(), {})
        self.assertEqual([path.stat().st_size for path in self.items.iterdir() if path.stat().st_size > 0], [])

    def test_a_file_that_changes_before_it_is_added(self):
        def becomes(make):
            def change(source):
                source.unlink()
                make(source)
            return change

        changes = {
            "vanished": (pathlib.Path.unlink, None),
            "pipe": (becomes(os.mkfifo), None),
            "folder": (becomes(pathlib.Path.mkdir), None),
            "loop": (becomes(lambda source: os.symlink(source.name, source)), None),
            "device": (becomes(lambda source: os.symlink("/dev/zero", source)), None),
            "empty": (lambda source: source.write_bytes(b""), None),
            "grown": (lambda source: source.write_bytes(b"before and after"), b"before and after"),
            "replaced": (becomes(lambda source: source.write_bytes(b"other")), b"other"),
        }
        running = []
        for name, (change, _) in changes.items():
            source = pathlib.Path(self.write(f"source/{name}.jpg", b"before"))
            running.append((name, self.start_share("--wait", "3", "--tap", "addButton", source)))
            self.wait_for(running[-1][1], "loadThumbnails: failed")
            change(source)
        for name, process in running:
            self.assertIn(self.end(process), (0, 1, 4), name)
        added = {entry["preferredName"]: (self.items / entry["fileName"]).read_bytes() for entry in self.ledger().values()}
        self.assertEqual(added, {name + ".jpg": content for name, (_, content) in changes.items() if content})

    def wait_for(self, process, text):
        for line in process.stderr:
            if text in line.decode():
                return
        self.fail("ended before " + text)

    def end(self, process):
        process.communicate(timeout=60)
        return process.returncode


class Privacy(HostileTest):
    def test_whatever_is_made_is_made_for_the_user_alone(self):
        trace = self.home / "trace"
        calls = "trace=open,openat,creat,mkdir,mkdirat,mknod,mknodat,umask,chmod,fchmod,fchmodat,unshare,landlock_create_ruleset"

        def traced(program, *arguments):
            subprocess.run(["strace", "-f", "-qq", "-A", "-o", trace, "-e", calls, BIN / program, *map(str, arguments)],
                           env=self.environment, capture_output=True, check=True, timeout=120,
                           preexec_fn=lambda: os.umask(0))

        subprocess.run(["rm", "-rf", self.home / "data", self.home / "config"], check=True)
        cover = self.write("covers/c.jpg", b"cover")
        catalogue = self.write("c.json", b'[{"namePath":["A"],"fake":false,"thumbNailName":"c.jpg"}]')
        traced("sela-vault", "init")
        traced("sela-vault", "publish", catalogue, "--passcode-file", self.home / "passcode", "--covers",
               pathlib.Path(cover).parent)
        photo = self.write("photo.jpg", b"x" * 10)
        traced("sela-share", "--headless", "--snapshot", self.home / "screen.png", "--tree", self.home / "tree.json",
               "--tap", "addButton", photo)
        traced("sela-vault", "import", "--keep", "--into", self.home / "into")
        traced("sela-vault", "import", "--into", self.home / "into")

        masks = {}
        made = 0
        for line in trace.read_text().splitlines():
            process = line.split()[0]
            if mask := re.search(r"umask\((\d+)", line):
                masks[process] = int(mask[1], 8)
            if re.search(r"= -1|chmod", line) and "chmod" not in line:
                continue
            mode = None
            if "O_CREAT" in line or "mkdir" in line or "creat(" in line or "chmod" in line:
                mode = re.search(r", (0\d*)\)", line)
            if not mode or '"/dev/' in line or '"/proc/' in line:
                continue
            made += 1
            mask = 0 if "chmod" in line else masks.get(process, 0o077)
            self.assertEqual(int(mode[1], 8) & ~mask & 0o077, 0, line)
        self.assertGreater(made, 10)
        # The helper makes these calls whether the kernel supports them or not.
        for layer in ("unshare(CLONE_NEWUSER|CLONE_NEWNET", "landlock_create_ruleset("):
            self.assertIn(layer, trace.read_text())
        for path in [self.home / name for name in ("screen.png", "tree.json", "data/sela", "config/sela", "into")]:
            for each in [path, *path.rglob("*")]:
                self.assertEqual(each.stat().st_mode & 0o077, 0, each)

    def test_no_core_is_left(self):
        def dumps_core(*command):
            process = self.start(*command, cwd=self.home, stdin=subprocess.PIPE, preexec_fn=lambda: resource.setrlimit(
                resource.RLIMIT_CORE, [resource.RLIM_INFINITY] * 2))
            self.addCleanup(process.stdin.close)
            while " S " not in pathlib.Path(f"/proc/{process.pid}/stat").read_text():
                time.sleep(0.01)
            process.send_signal(signal.SIGABRT)
            return os.WCOREDUMP(os.waitpid(process.pid, 0)[1])

        if not dumps_core("sleep", "60"):
            self.skipTest("cores go nowhere")
        self.assertFalse(dumps_core(BIN / "sela-share", "--headless", "--wait", "60", self.write("a.jpg", b"x")))
        self.assertFalse(dumps_core(BIN / "sela-vault", "publish", "--passcode-file", "-", self.home / "catalogue.json"))

    def test_what_others_could_read_is_closed_to_them(self):
        self.container.chmod(0o755)
        self.settings.chmod(0o644)
        self.add(self.write("a.jpg", b"x"))
        self.assertEqual([path.stat().st_mode & 0o777 for path in (self.container, self.settings)], [0o700, 0o600])

    def test_digits_stand_in_no_argument(self):
        photo, file = self.write("a.jpg", b"x"), self.write("digits", b"123456\n")
        process = self.start_share("--wait", "60", "--type", "918273", "--type=645342", photo)
        process.stderr.readline()
        arguments = pathlib.Path(f"/proc/{process.pid}/cmdline").read_text()
        self.assertIn("--type\0xxxxxx\0--type=xxxxxx\0", arguments)
        for digits, status in [("@" + file, 3), ("-", 3), ("@" + photo, 64), ("@missing", 64), ("@", 64)]:
            self.share("--tap", "albumButton", "--type", digits, "--tap", "row:0:0", photo, input=b"123456", expect=status)
        self.share("--type", "-", "--type", "-", photo, expect=64)

    def test_a_passcode_is_never_shown(self):
        self.provision(passcode="918273", decoy="645342")
        photo, tree = self.write("a.jpg", b"x"), self.home / "tree.json"
        shown = []
        for steps, status in [
            (["--type", "918273", "--tap", "row:0:0", "--tap", "addButton"], 0),
            (["--type", "645342", "--tap", "row:0:0", "--tap", "addButton"], 0),
            (["--type", "918272", "--wait", "1", "--tree", tree], 3),
            (["--type", "91827", "--tree", tree], 3),
            (["--type", "918273918273"], 65),
            (["--type=918273"], 3),
            (["--typ=918273"], 64),
            (["--type", "918273x"], 64),
        ]:
            result = self.share("--tap", "albumButton", *steps, photo, expect=status)
            shown += [result.stdout, result.stderr]
            if tree.exists():
                shown.append(re.sub(r'"name":"[^"]*"', "", tree.read_text()))
                tree.unlink()
        self.vault("publish", self.home / "catalogue.json", "--passcode", "111111", expect=64)
        shown += [self.vault(*command).stdout for command in (["album", "list"], ["ledger"], ["ledger", "--json"])]
        for secret in ("91827", "64534", "is not on the screen: button", "button9", "2580"):
            self.assertNotIn(secret, re.sub(r"\d{10}\.\d+", "TIME", "".join(shown)))

    @unittest.skipUnless(os.geteuid() == 0, "nobody else may look")
    def test_memory_holds_one_side_only(self):
        def memory(process):
            with open(f"/proc/{process.pid}/maps") as maps, open(f"/proc/{process.pid}/mem", "rb", 0) as content:
                for begin, end in re.findall(r"^(\w+)-(\w+) rw.* 0 *(?:\[(?:heap|stack)\])?$", maps.read(), re.MULTILINE):
                    content.seek(int(begin, 16))
                    yield content.read(int(end, 16) - int(begin, 16))

        sides = {"918273": b"vaultside", "645342": b"decoyside"}
        albums = [{"namePath": [f"{name.decode()} {'x' * length}"], "fake": name == b"decoyside", "password": "7193846"}
                  for name in sides.values() for length in (1, 30)]
        self.vault("publish", self.write("c.json", json.dumps(albums).encode()),
                   "--passcode-file", self.write("passcode", b"918273"),
                   "--decoy-passcode-file", self.write("decoy", b"645342"))
        for code, other in [("918273", "645342"), ("645342", "918273")]:
            tree = self.home / code
            process = self.start_share("--tap", "albumButton", "--type", code, "--tree", tree, "--wait", "60",
                                       self.write("a.jpg", b"x"))
            while not tree.exists():
                time.sleep(0.05)
            held = b"".join(memory(process))
            self.assertIn(sides[code], held)
            for secret in (sides[other], other.encode()):
                self.assertEqual(held.count(secret), 0, (code, secret))
            process.kill()

    def test_both_sides_look_the_same(self):
        self.write("covers/c.png", PNG)
        albums = [album | {"fake": fake, "thumbNailName": "c.png"} for fake in (False, True) for album in CATALOGUE[:5]]
        self.vault("publish", self.write("same.json", json.dumps(albums).encode()), "--covers", self.home / "covers",
                   "--passcode-file", self.write("passcode", b"918273"),
                   "--decoy-passcode-file", self.write("decoy", b"645342"))
        photo = self.write("a.png", PNG)

        def walk(code):
            screens = [self.home / f"{code}-{number}" for number in range(12)]
            looks = iter(screens)
            look = lambda: ("--tree", next(looks), "--snapshot", next(looks))
            log = self.share("--tap", "albumButton", "--type", code[:5], *look(), "--type", code[5:], *look(),
                             "--tap", "showChildButton:1", *look(), "--tap", "showChildButton:2", *look(),
                             "--type", "2580", *look(), "--tap", "row:2:1", *look(), "--tap", "addButton", photo).stderr
            return [screen.read_bytes() for screen in screens], re.sub("[0-9]+", "0", log)

        self.assertEqual(walk("918273"), walk("645342"))
        self.assertEqual([entry["fake"] for entry in self.ledger().values()], [False, True])

    def test_each_side_shows_nothing_of_the_other(self):
        self.provision(passcode="918273", decoy="645342")
        photo, locked, tree = self.write("a.jpg", b"x"), self.home / "locked.json", self.home / "tree.json"
        vault, decoy = {"Family", "Trips", "Private"}, {"Recipes"}
        for passcode, own, other in [("918273", vault, decoy), ("645342", decoy, vault)]:
            result = self.share("--tap", "albumButton", "--tree", locked, "--type", passcode, "--tree", tree,
                                "--tap", "row:0:0", "--tap", "addButton", photo)
            text = tree.read_text()
            for name in vault | decoy:
                self.assertNotIn(name, locked.read_text())
            for name in own:
                self.assertIn(f'"{name}"', text)
            for name in other:
                self.assertNotIn(name, text + result.stdout + result.stderr)
        self.assertEqual([(entry["albumNames"], entry["fake"]) for entry in self.ledger().values()],
                         [(["Family"], False), (["Recipes"], True)])
