#include "mediaservice/pictures/GIFReader.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include <gif_lib.h>

namespace sela {

namespace {

struct Input {
    const InputFile& file;
    std::int64_t offset;
};

int read(GifFileType* gif, GifByteType* buffer, int size) {
    auto& input = *static_cast<Input*>(gif->UserData);
    const std::size_t count = input.file.readAt(
        input.offset, std::as_writable_bytes(std::span(buffer, static_cast<std::size_t>(size))));
    input.offset += static_cast<std::int64_t>(count);
    return static_cast<int>(count);
}

struct Close {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

/// Reads up to the first frame; false when there is none. `transparent` becomes the index of the transparent
/// colour, when the frame has one.
bool findFirstFrame(GifFileType* gif, int& transparent) {
    for (;;) {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif, &record) == GIF_ERROR)
            return false;
        if (record == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(gif) == GIF_OK;
        if (record != EXTENSION_RECORD_TYPE)
            return false;
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif, &code, &block) == GIF_ERROR)
            return false;
        while (block) {
            GraphicsControlBlock control;
            if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
                transparent = control.TransparentColor;
            if (DGifGetExtensionNext(gif, &block) == GIF_ERROR)
                return false;
        }
    }
}

/// The frame's colour indices by rows from the top; empty when it is truncated.
std::vector<GifPixelType> readIndices(GifFileType* gif) {
    const int width = gif->Image.Width;
    const int height = gif->Image.Height;
    std::vector<GifPixelType> indices(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto readRow = [&](int y) {
        return DGifGetLine(gif, indices.data() + static_cast<std::ptrdiff_t>(y) * width, width) == GIF_OK;
    };
    struct Pass {
        int first, step;
    };
    constexpr std::array interlaced{Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}};
    constexpr std::array plain{Pass{0, 1}};
    const std::span<const Pass> passes =
        gif->Image.Interlace ? std::span<const Pass>(interlaced) : std::span<const Pass>(plain);
    for (const Pass& pass : passes)
        for (int y = pass.first; y < height; y += pass.step)
            if (!readRow(y))
                return {};
    return indices;
}

} // namespace

bool readGIF(const InputFile& file, PictureTarget& target) {
    Input input{file, 0};
    const std::unique_ptr<GifFileType, Close> gif(DGifOpen(&input, &read, nullptr));
    int transparent = NO_TRANSPARENT_COLOR;
    if (!gif || !findFirstFrame(gif.get(), transparent))
        return false;
    const GifImageDesc& frame = gif->Image;
    const ColorMapObject* colours = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
    // A frame may reach beyond the canvas that the file claims.
    const PictureSize size{std::max(gif->SWidth, frame.Left + frame.Width),
                           std::max(gif->SHeight, frame.Top + frame.Height)};
    if (!colours || frame.Width < 1 || frame.Height < 1 || !isDecodableSize(size))
        return false;
    const std::vector<GifPixelType> indices = readIndices(gif.get());
    if (indices.empty())
        return false;

    target.begin(PictureRows::of(size));
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(size.width));
    for (int y = 0; y < size.height; ++y) {
        std::ranges::fill(row, std::uint8_t{0});
        if (y >= frame.Top && y < frame.Top + frame.Height) {
            const auto* index = indices.data() + static_cast<std::ptrdiff_t>(y - frame.Top) * frame.Width;
            std::uint8_t* out = row.data() + static_cast<std::ptrdiff_t>(4) * frame.Left;
            for (int x = 0; x < frame.Width; ++x, ++index, out += 4) {
                if (*index == transparent || *index >= colours->ColorCount)
                    continue;
                const GifColorType& colour = colours->Colors[*index];
                out[0] = colour.Red;
                out[1] = colour.Green;
                out[2] = colour.Blue;
                out[3] = 255;
            }
        }
        target.addRow(row.data());
    }
    return true;
}

} // namespace sela
