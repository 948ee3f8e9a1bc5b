"""The Debian package: what is in it, what it asks for, and that the programs in it work where they were unpacked."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import harness
from harness import BIN, PNG, HomeTest

ID = "xyz.sela.share"
CONTENT = {
    "bin": "sela-share sela-vault",
    "libexec/sela-share": "sela-media sela-media-video sela-share-service",
    "share/Thunar/sendto": f"{ID}.desktop",
    "share/applications": f"{ID}.desktop",
    "share/bash-completion/completions": "sela-share sela-vault",
    "share/dbus-1/services": f"{ID}.service",
    "share/doc/sela-share": "README.md changelog.gz copyright",
    "share/fish/vendor_completions.d": "sela-share.fish sela-vault.fish",
    "share/icons/hicolor/scalable/apps": f"{ID}.svg",
    f"share/kpackage/Purpose/{ID}": "contents/code/main.py metadata.json",
    "share/kio/servicemenus": f"{ID}.desktop",
    "share/man": "man1/sela-share.1.gz man1/sela-vault.1.gz man8/sela-media.8.gz",
    "share/metainfo": f"{ID}.metainfo.xml",
    "share/nautilus-python/extensions": "sela-share.py",
    "share/zsh/vendor-completions": "_sela-share _sela-vault",
}


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
        files = {path.relative_to(self.root / "usr").as_posix(): path
                 for path in (self.root / "usr").rglob("*") if not path.is_dir()}
        variable = [name for name in files if re.match(r"share/(locale/\w+/LC_MESSAGES/sela-share\.mo|doc/sela-share/docs/.*)$", name)]
        self.assertIn("share/locale/en/LC_MESSAGES/sela-share.mo", variable)
        self.assertIn("share/doc/sela-share/docs/formats.md", variable)
        self.assertEqual(files.keys() - set(variable),
                         {f"{folder}/{name}" for folder, names in CONTENT.items() for name in names.split()})
        listing = subprocess.run(["dpkg-deb", "--contents", self.package], capture_output=True, text=True, check=True).stdout
        for line in listing.splitlines():
            runs = re.search(r"/(bin|libexec/sela-share|contents/code)/[^/]+$", line)
            self.assertRegex(line, r"^(drwxr-xr-x|-rwxr-xr-x) root/root" if runs or line.endswith("/") else r"^-rw-r--r-- root/root")
        self.assertIn("\nExec=/usr/libexec/sela-share/sela-share-service\n", files[f"share/dbus-1/services/{ID}.service"].read_text())

        # Without scripts, neither installing nor removing it touches more than its own files.
        self.assertEqual({path.name for path in (self.root / "DEBIAN").iterdir()}, {"control", "md5sums"})
        self.assertEqual({path.name for path in self.root.iterdir()}, {"DEBIAN", "usr"})

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
