// SPDX-License-Identifier: GPL-2.0-or-later
// Any file in place of an image. The decoders are Qt's; ours is what is asked of them, and what is made of their
// answer.
#include "fuzz/fuzz_input.h"
#include "images/decoder_messages.h"
#include "images/depth_range.h"
#include "images/image_files.h"
#include "protocol/frame_layout.h"
#include "terminal/errors.h"

#include <QImage>
#include <QSize>

#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace tesmor;

namespace {

constexpr int MOST_PIXELS = 1'000'000; // of the images that are decoded here; the command looks at the memory instead

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = memfd_create("image", MFD_CLOEXEC);
    static const QString name = QString("/proc/self/fd/%1").arg(file);
    fuzz::require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size), "a file");
    try {
        const apps::DecoderSession session;
        const apps::ImageSource source{name, 0, name};
        const QSize imageSize = apps::ImageReader().readHeader(source).size;
        fuzz::require(imageSize.width() > 0 && imageSize.height() > 0, "an image has a size");
        if (qint64{imageSize.width()} * imageSize.height() > MOST_PIXELS)
            return 0;
        const QImage image = apps::scaleToFrame(apps::ImageReader().read(source, imageSize), apps::FULL_RANGE);
        fuzz::require(image.size() == imageSize && image.format() == QImage::Format_BGR888, "a frame is as announced");
        fuzz::require(image.bytesPerLine() == rowBytes(imageSize.width()), "and laid out as one");
    } catch (const apps::UserError&) {
    }
    return 0;
}
