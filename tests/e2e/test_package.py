"""The Debian package: its content, its dependencies, and that its programs work where they were unpacked."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import harness
from harness import BIN, PNG, HomeTest

ID = "xyz.sela.share"
@unittest.skipUnless(shutil.which("cpack") and shutil.which("dpkg-shlibdeps"), "needs cpack and dpkg-dev")
class Package(HomeTest):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="sela-package-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        subprocess.run(["cpack", "--config", BIN.parent / "CPackConfig.cmake", "-B", cls.folder], check=True,
                       capture_output=True)
        cls.package = next(cls.folder.glob("sela-share_*_*.deb"))
        subprocess.run(["dpkg-deb", "--raw-extract", cls.package, cls.folder / "root"], check=True)
        cls.root = cls.folder / "root"

    def test_it_holds_what_it_should_and_nothing_else(self):
        """Compares with package.txt, but for other languages and documents; SELA_RENEW_PACKAGE=1 writes it."""
        listing = subprocess.run(["dpkg-deb", "--contents", self.package], capture_output=True, text=True, check=True)
        files = [re.sub(r" +\d+ \S+ \S+ ", " ", line) for line in listing.stdout.splitlines()
                 if not re.search("/locale/(?!en/).|/docs/.", line)]
        files += [f"DEBIAN/{path.name}" for path in (self.root / "DEBIAN").iterdir()]
        text = "\n".join(sorted(files, key=lambda line: line.split()[-1])) + "\n"
        reference = pathlib.Path(__file__).with_name("package.txt")
        if os.environ.get("SELA_RENEW_PACKAGE"):
            reference.write_text(text)
        self.assertEqual(text.splitlines(), reference.read_text().splitlines())
        service = (self.root / f"usr/share/dbus-1/services/{ID}.service").read_text()
        self.assertIn("\nExec=/usr/libexec/sela-share/sela-share-service\n", service)

    def test_it_asks_for_the_libraries(self):
        control = (self.root / "DEBIAN/control").read_text()
        depends = re.search(r"^Depends: (.*)$", control, re.MULTILINE).group(1)
        for library in ("libqt6gui6", "libsqlite3-0", "libheif1", "libavformat", "libglib2.0-0", "libc6"):
            self.assertIn(library, depends)
        self.assertNotIn("-dev", depends)

    def test_the_programs_work_where_they_are(self):
        self.addCleanup(setattr, harness, "BIN", BIN)
        harness.BIN = self.root / "usr/bin"
        self.provision()
        photo, tree = self.write("photo.png", PNG), self.home / "tree.json"
        result = self.add("--tree", tree, photo)
        self.assertNotIn("failed to decode", result.stderr)
        self.assertIn('"Add 1 file to Default Album"', tree.read_text())
        self.vault("import", "--into", self.home / "into")
        self.assertTrue((self.home / "into/vault/Default Album/photo.png").exists())
