// SPDX-License-Identifier: GPL-2.0-or-later
// Any bytes in place of a TIFF file of several pages. libtiff decodes them; ours is what its pages and its description
// are taken for. Input: the channel and the time that are chosen, a byte each, 0 for none; then the file.
#include "fuzz/fuzz_input.h"
#include "images/depth_range.h"
#include "images/image_files.h"
#include "images/image_sources.h"
#include "terminal/errors.h"

#include <optional>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace tesmor;

namespace {

constexpr int MOST_PIXELS = 1'000'000; // of the images that are decoded here; the command looks at the memory instead
constexpr std::size_t MOST_DECODED = 4;

std::optional<int> choiceOf(std::uint8_t byte)
{
    return byte == 0 ? std::nullopt : std::optional<int>(byte);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = memfd_create("stack", MFD_CLOEXEC);
    static const QString name = QString("/proc/self/fd/%1").arg(file);
    if (size < 2)
        return 0;
    fuzz::require(ftruncate(file, 0) == 0 && pwrite(file, data + 2, size - 2, 0) == static_cast<ssize_t>(size - 2),
                  "a file");
    try {
        const auto images = apps::findImages({name}, {choiceOf(data[0]), choiceOf(data[1])});
        fuzz::require(!images.empty(), "a file has a page, or is refused");
        apps::ImageReader reader;
        for (std::size_t i = 0; i < std::min(images.size(), MOST_DECODED); ++i) {
            const apps::ImageHeader header = reader.readHeader(images[i]);
            fuzz::require(header.size.width() > 0 && header.size.height() > 0, "a page has a size");
            if (qint64{header.size.width()} * header.size.height() > MOST_PIXELS)
                continue;
            const QImage image = reader.read(images[i], header.size);
            fuzz::require(apps::isDeep(image.format()) == header.deep, "a page is as deep as announced");
            apps::ValueCounts counts;
            counts.add(image);
            const apps::DepthRange range = counts.usedRange();
            fuzz::require(range.low < range.high, "a range has two ends");
            fuzz::require(apps::scaleToFrame(image, range).size() == header.size, "a frame is as large as its page");
        }
    } catch (const apps::UserError&) {
    }
    return 0;
}
