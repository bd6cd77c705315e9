// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/tiff_samples.h"

#include <QRect>

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <new>
#include <optional>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr tmsize_t MOST_BLOCK_BYTES = 1 << 28; // of a row or tile; only damaged files have larger ones

// Samples as they lie in a file's row or tile.
struct Block {
    std::vector<std::uint8_t> bytes;
    QRect area;    // of the image
    int rowPixels; // of the block, which may reach beyond the area
    int plane;     // that it holds; 0 if it holds them all
};

template <typename Sample>
void place(const Block& block, const SampleLayout& layout, QImage& image)
{
    const int step = layout.apart ? 1 : layout.samples;
    const int colours = layout.apart ? 1 : layout.colours;
    const int imageStep = image.depth() / 8 / static_cast<int>(sizeof(Sample));
    for (int y = 0; y < block.area.height(); ++y) {
        const auto* from = reinterpret_cast<const Sample*>(block.bytes.data()) +
                           static_cast<std::ptrdiff_t>(y) * block.rowPixels * step;
        auto* to = reinterpret_cast<Sample*>(image.scanLine(block.area.y() + y)) +
                   static_cast<std::ptrdiff_t>(block.area.x()) * imageStep + block.plane;
        for (int x = 0; x < block.area.width(); ++x, from += step, to += imageStep)
            std::copy_n(from, colours, to);
    }
}

void place(const Block& block, const SampleLayout& layout, QImage& image)
{
    if (layout.bits == 16)
        place<std::uint16_t>(block, layout, image);
    else
        place<std::uint8_t>(block, layout, image);
}

// Of a row or tile, all samples that lie together in it.
std::size_t bytesOf(const SampleLayout& layout, std::size_t pixels)
{
    return pixels * static_cast<std::size_t>(layout.bits / 8 * (layout.apart ? 1 : layout.samples));
}

bool readTiles(tiff* file, const SampleLayout& layout, QImage& image)
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(file, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(file, TIFFTAG_TILELENGTH, &height);
    const tmsize_t size = TIFFTileSize(file);
    if (size <= 0 || size > MOST_BLOCK_BYTES ||
        static_cast<std::size_t>(size) < bytesOf(layout, std::size_t{width} * height))
        return false;
    Block block{std::vector<std::uint8_t>(static_cast<std::size_t>(size)), {}, static_cast<int>(width), 0};
    for (; block.plane < (layout.apart ? layout.colours : 1); ++block.plane) {
        for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(image.height()); y += height) {
            for (std::uint32_t x = 0; x < static_cast<std::uint32_t>(image.width()); x += width) {
                if (TIFFReadTile(file, block.bytes.data(), x, y, 0, static_cast<std::uint16_t>(block.plane)) < 0)
                    return false;
                block.area =
                    QRect(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width), static_cast<int>(height)) &
                    image.rect();
                place(block, layout, image);
            }
        }
    }
    return true;
}

bool readRows(tiff* file, const SampleLayout& layout, QImage& image)
{
    const tmsize_t size = TIFFScanlineSize(file);
    if (size <= 0 || size > MOST_BLOCK_BYTES ||
        static_cast<std::size_t>(size) < bytesOf(layout, static_cast<std::size_t>(image.width())))
        return false;
    Block block{std::vector<std::uint8_t>(static_cast<std::size_t>(size)), {}, image.width(), 0};
    for (; block.plane < (layout.apart ? layout.colours : 1); ++block.plane) {
        for (int y = 0; y < image.height(); ++y) {
            if (TIFFReadScanline(file, block.bytes.data(), static_cast<std::uint32_t>(y),
                                 static_cast<std::uint16_t>(block.plane)) < 0)
                return false;
            block.area = QRect(0, y, image.width(), 1);
            place(block, layout, image);
        }
    }
    return true;
}

QImage::Format formatOf(const SampleLayout& layout)
{
    if (layout.colours == 1)
        return layout.bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
    return layout.bits == 16 ? QImage::Format_RGBX64 : QImage::Format_RGB888;
}

std::uint64_t imageBytes(const SampleLayout& layout)
{
    return bytesOf(layout, static_cast<std::size_t>(layout.size.width())) *
           static_cast<std::uint64_t>(layout.size.height()) *
           static_cast<std::uint64_t>(layout.apart ? layout.samples : 1);
}

// Where the samples begin, if they are stored as they are and in one piece.
std::optional<std::uint64_t> startOfSamples(tiff* file)
{
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(file, TIFFTAG_COMPRESSION, &compression);
    const std::uint64_t* offsets = nullptr;
    const std::uint64_t* counts = nullptr;
    if (compression != COMPRESSION_NONE || TIFFIsTiled(file) || !TIFFGetField(file, TIFFTAG_STRIPOFFSETS, &offsets) ||
        !TIFFGetField(file, TIFFTAG_STRIPBYTECOUNTS, &counts))
        return std::nullopt;
    for (std::uint32_t strip = 1; strip < TIFFNumberOfStrips(file); ++strip) {
        if (offsets[strip] != offsets[strip - 1] + counts[strip - 1])
            return std::nullopt;
    }
    return offsets[0];
}

bool readBehind(tiff* file, const SampleLayout& layout, int behind, QImage& image)
{
    const auto start = startOfSamples(file);
    const std::size_t size = bytesOf(layout, static_cast<std::size_t>(image.width()));
    const thandle_t handle = TIFFClientdata(file);
    const toff_t offset = start.value_or(0) + static_cast<std::uint64_t>(behind) * imageBytes(layout);
    if (!start || size > MOST_BLOCK_BYTES || TIFFGetSeekProc(file)(handle, offset, SEEK_SET) != offset)
        return false;
    Block block{std::vector<std::uint8_t>(size), {}, image.width(), 0};
    for (; block.plane < (layout.apart ? layout.colours : 1); ++block.plane) {
        for (int y = 0; y < image.height(); ++y) {
            if (TIFFGetReadProc(file)(handle, block.bytes.data(), static_cast<tmsize_t>(size)) !=
                static_cast<tmsize_t>(size))
                return false;
            if (layout.bits == 16 && TIFFIsByteSwapped(file))
                TIFFSwabArrayOfShort(reinterpret_cast<std::uint16_t*>(block.bytes.data()),
                                     static_cast<tmsize_t>(size / 2));
            block.area = QRect(0, y, image.width(), 1);
            place(block, layout, image);
        }
    }
    return true;
}

} // namespace

std::int64_t imageRoom(tiff* file, const SampleLayout& layout)
{
    const auto start = startOfSamples(file);
    if (!start)
        return 1;
    const std::uint64_t directory = TIFFCurrentDirOffset(file);
    const std::uint64_t end =
        directory > *start ? directory : static_cast<std::uint64_t>(TIFFGetSizeProc(file)(TIFFClientdata(file)));
    return std::max<std::int64_t>(1, static_cast<std::int64_t>((end - std::min(end, *start)) / imageBytes(layout)));
}

QImage readSamples(tiff* file, const SampleLayout& layout, int behind)
{
    QImage image(layout.size, formatOf(layout));
    if (image.isNull())
        throw std::bad_alloc();
    if (image.format() == QImage::Format_RGBX64)
        image.fill(Qt::white); // the fourth channel, too
    const bool done = behind > 0          ? readBehind(file, layout, behind, image)
                      : TIFFIsTiled(file) ? readTiles(file, layout, image)
                                          : readRows(file, layout, image);
    return done ? image : QImage();
}

} // namespace tesmor::apps
