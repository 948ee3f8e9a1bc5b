#include "fuzz/FuzzTarget.h"
#include "store/SharedAlbum.h"
#include "unlock/AlbumTree.h"

// Reads arbitrary bytes as a catalogue. What is accepted must survive being written and read again, and each
// vault must show only its own albums.
void fuzz(sela::DataView input) {
    const auto albums = sela::decodeJSONArray<sela::SharedAlbum>(input);
    if (!albums)
        return;
    sela::JSONWriter writer;
    writer.beginArray();
    for (const sela::SharedAlbum& album : albums.value())
        sela::writeJSONRecord(writer, album);
    writer.endArray();
    require(writer.isValid());
    const auto again = sela::decodeJSONArray<sela::SharedAlbum>(sela::asData(writer.text()));
    require(again && again.value() == albums.value());

    for (const bool fake : {false, true}) {
        sela::AlbumTree tree;
        tree.load(albums.value(), fake);
        for (int section = 0; section < static_cast<int>(tree.parentAlbums().size()); ++section) {
            tree.toggleChildren(section);
            for (int row = 0; const sela::SharedAlbum* album = tree.album(section, row); ++row)
                require(album->fake == fake);
        }
    }
}
