#include "mediaservice/pictures/PictureDecoder.h"

#include "mediaservice/pictures/BMPReader.h"
#include "mediaservice/pictures/ColourProfile.h"
#include "mediaservice/pictures/DNGReader.h"
#include "mediaservice/pictures/GIFReader.h"
#include "mediaservice/pictures/HEIFReader.h"
#include "mediaservice/pictures/JPEGReader.h"
#include "mediaservice/pictures/PICTReader.h"
#include "mediaservice/pictures/PNGReader.h"
#include "mediaservice/pictures/PictureKind.h"
#include "mediaservice/pictures/WebPReader.h"

namespace sela {

namespace {

std::optional<DecodedPicture> read(const InputFile& file, PictureBounds bounds) {
    switch (pictureKind(file)) {
    case PictureKind::none:
        return std::nullopt;
    case PictureKind::jpeg:
        return readJPEG(file, 0, file.size(), bounds);
    case PictureKind::png:
        return readPNG(file, bounds);
    case PictureKind::gif:
        return readGIF(file, bounds);
    case PictureKind::bmp:
        return readBMP(file, bounds);
    case PictureKind::webp:
        return readWebP(file, bounds);
    case PictureKind::pict:
        return readPICT(file, bounds);
    case PictureKind::heif:
        return readHEIF(file, bounds);
    case PictureKind::tiff:
        return readDNGPreview(file, bounds);
    }
    return std::nullopt;
}

} // namespace

std::optional<PixelBuffer> decodePicture(const InputFile& file, PictureBounds bounds) {
    auto picture = read(file, bounds);
    if (!picture)
        return std::nullopt;
    const Orientation orientation = picture->orientation;
    return upright(convertedToSRGB(std::move(*picture)), orientation);
}

} // namespace sela
