"""The Debian package: what is in it, what it asks for, and that the programs in it work where they were unpacked."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import harness
from harness import BIN, HomeTest

ID = "xyz.sela.share"
CONTENT = f"""
bin/sela-share
bin/sela-vault
libexec/sela-share/sela-media
libexec/sela-share/sela-media-video
libexec/sela-share/sela-share-service
share/Thunar/sendto/{ID}.desktop
share/applications/{ID}.desktop
share/bash-completion/completions/sela-share
share/bash-completion/completions/sela-vault
share/dbus-1/services/{ID}.service
share/doc/sela-share/README.md
share/doc/sela-share/changelog.gz
share/doc/sela-share/copyright
share/fish/vendor_completions.d/sela-share.fish
share/fish/vendor_completions.d/sela-vault.fish
share/icons/hicolor/scalable/apps/{ID}.svg
share/kpackage/Purpose/{ID}/contents/code/main.py
share/kpackage/Purpose/{ID}/metadata.json
share/kio/servicemenus/{ID}.desktop
share/man/man1/sela-share.1.gz
share/man/man1/sela-vault.1.gz
share/man/man8/sela-media.8.gz
share/metainfo/{ID}.metainfo.xml
share/nautilus-python/extensions/sela-share.py
share/zsh/vendor-completions/_sela-share
share/zsh/vendor-completions/_sela-vault
""".split()


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
        self.assertEqual(sorted(files.keys() - set(variable)), sorted(CONTENT))
        listing = subprocess.run(["dpkg-deb", "--contents", self.package], capture_output=True, text=True, check=True).stdout
        for line in listing.splitlines():
            runs = re.search(r"/(bin|libexec/sela-share|contents/code)/[^/]+$", line)
            self.assertRegex(line, r"^(drwxr-xr-x|-rwxr-xr-x) root/root" if runs or line.endswith("/") else r"^-rw-r--r-- root/root")
        self.assertIn("\nExec=/usr/libexec/sela-share/sela-share-service\n", files[f"share/dbus-1/services/{ID}.service"].read_text())

    def test_it_leaves_the_rest_of_the_machine_alone(self):
        """There are no scripts, so neither installing nor removing it touches more than its own files."""
        self.assertEqual({path.name for path in (self.root / "DEBIAN").iterdir()}, {"control", "md5sums"})
        self.assertEqual({path.name for path in self.root.iterdir()}, {"DEBIAN", "usr"})

    def test_it_asks_for_the_libraries(self):
        control = (self.root / "DEBIAN/control").read_text()
        depends = re.search(r"^Depends: (.*)$", control, re.MULTILINE).group(1)
        for library in ("libqt6gui6", "libsqlite3-0", "libheif1", "libavformat59", "libglib2.0-0", "libc6"):
            self.assertIn(library, depends)
        self.assertNotIn("-dev", depends)

    def test_the_programs_work_where_they_are(self):
        self.addCleanup(setattr, harness, "BIN", BIN)
        harness.BIN = self.root / "usr/bin"
        self.provision()
        picture = self.home / "photo.ppm"
        picture.write_bytes(b"P6 2 2 255\n" + b"\xff\0\0" * 4)
        photo = self.home / "photo.png"
        subprocess.run(["convert", picture, photo], check=True)
        tree = self.home / "tree.json"
        result = self.add("--tree", tree, photo)
        self.assertNotIn("failed to decode", result.stderr)
        self.assertIn('"Add 1 file to Default Album"', tree.read_text())
        self.vault("import", "--into", self.home / "into")
        self.assertTrue((self.home / "into/vault/Default Album/photo.png").exists())


if __name__ == "__main__":
    unittest.main()
