#include "mediaservice/pictures/PictureDecoder.h"

#include "mediaservice/pictures/BMPReader.h"
#include "mediaservice/pictures/DNGReader.h"
#include "mediaservice/pictures/GIFReader.h"
#include "mediaservice/pictures/HEIFReader.h"
#include "mediaservice/pictures/JPEGReader.h"
#include "mediaservice/pictures/PICTReader.h"
#include "mediaservice/pictures/PNGReader.h"
#include "mediaservice/pictures/PictureKind.h"
#include "mediaservice/pictures/WebPReader.h"

namespace sela {

bool readPicture(const InputFile& file, PictureTarget& target) {
    switch (pictureKind(file)) {
    case PictureKind::none:
        return false;
    case PictureKind::jpeg:
        return readJPEG(file, 0, file.size(), target);
    case PictureKind::png:
        return readPNG(file, target);
    case PictureKind::gif:
        return readGIF(file, target);
    case PictureKind::bmp:
        return readBMP(file, target);
    case PictureKind::webp:
        return readWebP(file, target);
    case PictureKind::pict:
        return readPICT(file, target);
    case PictureKind::heif:
        return readHEIF(file, target);
    case PictureKind::tiff:
        return readDNGPreview(file, target);
    }
    return false;
}

std::optional<PixelBuffer> decodePicture(const InputFile& file, PictureBounds bounds,
                                         PictureTarget::Wants wants) {
    ScaledPicture picture(bounds, wants);
    if (!readPicture(file, picture))
        return std::nullopt;
    return picture.take();
}

} // namespace sela
