#include "fuzz/FuzzTarget.h"
#include "mediaservice/pictures/EXIF.h"
#include "mediaservice/pictures/PictureDecoder.h"
#include "mediaservice/pictures/PictureKind.h"

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

// Reads arbitrary bytes as a picture of the kinds that are read without a library, and as a block of EXIF.
// (Files of the other kinds are mutated in the tests of the helper: their decoders may allocate more memory
// than a sanitized process can refuse.)
void fuzz(sela::DataView input) {
    sela::orientationOfEXIF(input);
    sela::FileDescriptor memory(::memfd_create("picture", MFD_CLOEXEC));
    require(::write(memory.get(), input.data(), input.size()) == static_cast<ssize_t>(input.size()));
    const sela::InputFile file(std::move(memory));
    const sela::PictureKind kind = sela::pictureKind(file);
    if (kind != sela::PictureKind::bmp && kind != sela::PictureKind::tiff && kind != sela::PictureKind::pict)
        return;
    const auto pixels = sela::decodePicture(file, 32);
    if (!pixels)
        return;
    require(pixels->width >= 1 && pixels->height >= 1 && std::max(pixels->width, pixels->height) <= 32);
    require(pixels->bytes.size() ==
            std::size_t{4} * static_cast<std::size_t>(pixels->width * pixels->height));
}
