"""Puts "Add to Sela" into the context menu of Nautilus, for selections that the vault keeps."""

from gi.repository import Gio, GObject, Nautilus


class AddToSela(GObject.GObject, Nautilus.MenuProvider):
    # Before Nautilus 43 a window came before the files.
    def get_file_items(self, *arguments):
        files = arguments[-1]
        application = Gio.DesktopAppInfo.new("xyz.sela.share.desktop")
        if not application or not files:
            return []
        kept = application.get_supported_types()
        if not all(any(Gio.content_type_is_a(file.get_mime_type(), kind) for kind in kept) for file in files):
            return []
        item = Nautilus.MenuItem(name="AddToSela::add", label=application.get_name(), icon="xyz.sela.share")
        item.connect("activate", self.add, application, [file.get_uri() for file in files])
        return [item]

    def add(self, item, application, uris):
        application.launch_uris(uris, None)
