"""The share targets as desktops use them: from an installed prefix, through the desktop entry and the message bus."""

import configparser
import json
import os
import pathlib
import re
import runpy
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import types
import unittest

from harness import BIN, HomeTest, kept_kinds

ID = "xyz.sela.share"
CALL = ["gdbus", "call", "--session", "--timeout", "20", "--dest", ID, "--object-path", "/xyz/sela/share", "--method"]

# A stand-in for sela-share: records how it was started, and adds the files without a window.
RECORDER = """#!/bin/sh
printf '%s\\n' "$*" >>"$HOME/calls"
printf '%s\\n' "$XDG_ACTIVATION_TOKEN$DESKTOP_STARTUP_ID" >>"$HOME/tokens"
exec {real} --headless --tap addButton "$@"
"""


class Installed(HomeTest):
    @classmethod
    def setUpClass(cls):
        cls.prefix = pathlib.Path(tempfile.mkdtemp(prefix="sela-prefix-"))
        cls.addClassCleanup(shutil.rmtree, cls.prefix)
        subprocess.run(["cmake", "--install", BIN.parent, "--prefix", cls.prefix], check=True, capture_output=True)
        cls.applications = cls.prefix / "share/applications"
        cls.entry = cls.applications / (ID + ".desktop")

    def keys(self, file, group="Desktop Entry"):
        parser = configparser.RawConfigParser(delimiters="=", comment_prefixes="#")
        parser.optionxform = str
        parser.read(file)
        return parser[group]


class Files(Installed):
    def test_validators_have_nothing_to_say(self):
        for command in (["desktop-file-validate", self.entry],
                        ["appstreamcli", "validate", "--no-net", "--pedantic", self.prefix / f"share/metainfo/{ID}.metainfo.xml"]):
            if not shutil.which(command[0]):
                self.skipTest(f"needs {command[0]}")
            result = subprocess.run(command, capture_output=True, text=True)
            # Newer validators ask for a tag with the developer's name that older ones do not know.
            complaints = [line for line in result.stdout.splitlines() if line and not re.match("✔|I: .* developer-", line)]
            self.assertEqual((result.returncode, complaints), (0, []))

    def test_every_kind_that_the_store_keeps_is_claimed(self):
        # The shared MIME database has no type for these two; other packages claim one of them.
        files = [self.write("file." + extension, b"x") for extension in kept_kinds() - {"pic", "raw-image"}]
        output = subprocess.run(["gio", "info", "--attributes=standard::fast-content-type", *files],
                                capture_output=True, text=True, check=True).stdout
        known = set(re.findall(r"fast-content-type: (\S+)", output))
        self.assertGreater(len(known), 15)
        claimed = self.keys(self.entry)["MimeType"]
        self.assertEqual(known | {"audio/x-wav", "audio/vnd.wave"}, set(claimed.split(";")) - {""}) # older and newer name
        for other in ("kio/servicemenus", "Thunar/sendto"):
            self.assertEqual(self.keys(self.prefix / "share" / other / (ID + ".desktop"))["MimeType"], claimed)

    def test_menus_start_one_program_for_all_files(self):
        for file, group in ((self.entry, "Desktop Entry"),
                            (self.prefix / f"share/kio/servicemenus/{ID}.desktop", "Desktop Action addToSela"),
                            (self.prefix / f"share/Thunar/sendto/{ID}.desktop", "Desktop Entry")):
            keys = self.keys(file, group)
            program, files = keys["Exec"].split()
            self.assertTrue(os.access(self.prefix / "bin" / program, os.X_OK), file)
            self.assertIn(files, ("%U", "%F"), file)
            self.assertEqual(keys["Name"], "Add to Sela")
            self.assertTrue((self.prefix / f"share/icons/hicolor/scalable/apps/{keys['Icon']}.svg").exists(), file)

    @unittest.skipUnless(shutil.which("update-desktop-database"), "needs desktop-file-utils")
    def test_it_is_offered_and_never_the_default(self):
        applications = self.home / "data/applications"
        shutil.copytree(self.applications, applications)
        for name in ("org.viewer.Viewer", "viewer", "xviewer"):
            (applications / (name + ".desktop")).write_text(
                f"[Desktop Entry]\nType=Application\nName={name}\nExec=true %U\nMimeType=image/jpeg;\n")
        subprocess.run(["update-desktop-database", applications], check=True)
        environment = self.environment | {"XDG_DATA_DIRS": "/usr/share", "PATH": f"{self.prefix}/bin:{os.environ['PATH']}"}
        said = subprocess.run(["gio", "mime", "image/jpeg"], env=environment, capture_output=True, text=True).stdout
        self.assertIn(ID + ".desktop", said.split("Registered applications:")[1])
        self.assertNotIn(ID, said.splitlines()[0])

    def test_nautilus_offers_it_for_what_the_vault_keeps(self):
        launched = []
        application = types.SimpleNamespace(
            get_name=lambda: "Add to Sela", get_supported_types=lambda: ["image/jpeg", "video/mp4"],
            launch_uris=lambda uris, context: launched.append(uris))
        item = types.SimpleNamespace(connect=lambda signal, call, *data: setattr(item, "press", lambda: call(item, *data)))
        gi = types.ModuleType("gi.repository")
        gi.Gio = types.SimpleNamespace(
            DesktopAppInfo=types.SimpleNamespace(new=lambda name: application if name == ID + ".desktop" else None),
            content_type_is_a=lambda kind, other: kind == other)
        gi.GObject = types.SimpleNamespace(GObject=type("GObject", (), {}))
        gi.Nautilus = types.SimpleNamespace(MenuProvider=type("MenuProvider", (), {}), MenuItem=lambda **values: item)
        sys.modules.update({"gi": types.ModuleType("gi"), "gi.repository": gi})
        self.addCleanup(lambda: [sys.modules.pop(name) for name in ("gi", "gi.repository")])
        extension = runpy.run_path(str(self.prefix / "share/nautilus-python/extensions/sela-share.py"))
        provider = extension["AddToSela"]()

        def file(kind, uri):
            return types.SimpleNamespace(get_mime_type=lambda: kind, get_uri=lambda: uri)

        photo, video, text = file("image/jpeg", "file:///a"), file("video/mp4", "file:///b"), file("text/plain", "file:///c")
        self.assertEqual(provider.get_file_items([photo, text]), [])
        self.assertEqual(provider.get_file_items([]), [])
        provider.get_file_items([photo, video])[0].press()
        provider.get_file_items("window", [photo])[0].press()
        self.assertEqual(launched, [["file:///a", "file:///b"], ["file:///a"]])


@unittest.skipUnless(shutil.which("dbus-run-session") and shutil.which("gio"), "needs dbus-run-session and gio")
class Launched(Installed):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        program = cls.prefix / "bin/sela-share"
        real = program.rename(program.with_name("sela-share.real"))
        program.write_text(RECORDER.format(real=real))
        program.chmod(0o755)

    def setUp(self):
        super().setUp()
        self.provision()
        self.environment |= {"PATH": f"{self.prefix}/bin:{os.environ['PATH']}",
                             "XDG_DATA_DIRS": f"{self.prefix}/share:/usr/share"}
        self.photo, self.video = self.write("a photo.jpg", b"x"), self.write("b.mov", b"y")

    def in_session(self, *commands):
        """Runs commands one after another on a private bus, whose traffic is logged to a file."""
        script = f'dbus-monitor --session >"$HOME/said" & monitor=$!; sleep 0.3\n'
        script += "\n".join(" ".join("'" + str(word) + "'" for word in command) for command in commands)
        script += f"""
            for i in $(seq 100); do
                sleep 0.1
                case $(gdbus call --session --dest org.freedesktop.DBus --object-path / --method \\
                       org.freedesktop.DBus.NameHasOwner {ID}) in *false*) break;; esac
            done
            kill $monitor"""
        result = subprocess.run(["dbus-run-session", "--", "bash", "-ec", script], env=self.environment,
                                capture_output=True, text=True, timeout=60)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result

    def calls(self):
        return (self.home / "calls").read_text().splitlines()

    def shared(self):
        return sorted(self.ledger_values("preferredName"))

    def test_the_entry_starts_one_program(self):
        subprocess.run(["gio", "launch", self.entry, self.photo, self.video], env=self.environment, check=True,
                       stderr=subprocess.DEVNULL)
        for _ in range(100):
            if len(self.ledger()) == 2:
                break
            time.sleep(0.1)
        self.assertEqual(self.shared(), ["a photo.jpg", "b.mov"])
        self.assertEqual(len(self.calls()), 1)

    def test_purpose_hears_how_it_ended(self):
        """Uses the protocol of KDE's library: a length, CBOR with texts and arrays of every size, and JSON back."""
        urls = [f"file://{self.photo.replace(' ', '%20')}"] + [f"file://{self.video}"] * 30

        def text(word):
            return bytes([0x78, len(word)]) + word.encode()

        for chosen, answer in ((urls, {"output": {"url": ""}}),
                               (["https://a/b.jpg"], {"error": 100, "errorText": "sela-share: https://a/b.jpg: it is no "
                                "file of this computer; save it as a file and add that"})):
            request = b"\xa2\x64urls\x98" + bytes([len(chosen)]) + b"".join(map(text, chosen)) + b"\x68mimeType" + text("*/*")
            listener = socket.socket(socket.AF_UNIX)
            listener.bind(str(self.home / f"socket{len(chosen)}"))
            listener.listen()
            plugin = subprocess.Popen(
                [self.prefix / f"share/kpackage/Purpose/{ID}/contents/code/main.py", "--server", listener.getsockname(),
                 "--pluginType", "Export", "--pluginPath", "nowhere"], env=self.environment)
            connection, _ = listener.accept()
            with listener, connection, connection.makefile("rwb") as stream:
                stream.write(b"%d\n" % len(request) + request)
                stream.flush()
                self.assertEqual(json.loads(stream.readline()), answer)
            self.assertEqual(plugin.wait(30), 0)
        self.assertEqual(self.calls()[0], f"--quiet -- {' '.join(urls)}")
        self.assertEqual(len(self.ledger()), 31)

    def test_the_bus_starts_one_program_for_each_request_and_ends(self):
        tokens = "{'desktop-startup-id': <'startup'>, 'activation-token': <'token'>}".replace("'", '"')
        uris = f'["file://{self.photo.replace(" ", "%20")}", "file://{self.video}"]'
        self.in_session(["gapplication", "launch", ID, self.photo, self.video],
                        [*CALL, "org.freedesktop.Application.Open", uris, tokens],
                        [*CALL, "org.freedesktop.Application.ActivateAction", "paste", "[]", "{}"],
                        [*CALL, "org.freedesktop.Application.Activate", "{}"],
                        [*CALL, "org.freedesktop.Application.Open", '["https://a/b.jpg"]', "{}"])
        both = f"--quiet -- {self.photo} {self.video}"
        self.assertEqual(sorted(self.calls()), sorted([both, both, "--quiet --paste", "--quiet", "--quiet -- https://a/b.jpg"]))
        self.assertEqual(self.shared(), ["a photo.jpg"] * 2 + ["b.mov"] * 2)
        self.assertIn("tokenstartup", (self.home / "tokens").read_text().splitlines())
        # An error is shown as a notification.
        said = (self.home / "said").read_text()
        for text in ("member=Notify", 'string "Add to Sela"',
                     'it is no file of this computer; save it as a file and add that"'):
            self.assertIn(text, said)
