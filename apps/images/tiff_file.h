// SPDX-License-Identifier: GPL-2.0-or-later
// A TIFF file, read through libtiff. All throw UserError, which names the file or page and the remedy. Any number of
// objects on one file, each used by one thread at a time.
#pragma once

#include "images/image_files.h"
#include "images/image_source.h"
#include "images/stack_description.h"

#include <QImage>
#include <QString>

#include <memory>

struct tiff;

namespace tesmor::apps {

struct TiffMessages;

class TiffFile {
public:
    // By its first bytes; false if it cannot be read.
    static bool isTiff(const QString& file);

    // At its first page.
    explicit TiffFile(const QString& file);
    ~TiffFile();
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    // How many pages there are, and what the first one says of them.
    DescribedFile describe();

    // For ImageSource: where a page begins, counted from 0. Quick for pages that follow each other.
    //   name   of the page, for messages
    std::uint64_t find(int page, const QString& name);

    ImageHeader readHeader(const ImageSource& page);

    // Of format Grayscale8, Grayscale16, RGB888, RGBX64 or, for palettes and the like, RGBX8888; turned upright, with
    // resolution and colour profile.
    QImage read(const ImageSource& page);

private:
    struct Layout;

    int pageCount();
    void select(const ImageSource& page);
    Layout layoutOf(const ImageSource& page);
    void requireSound(const ImageSource& page, bool complete) const;

    const QString file_;
    std::unique_ptr<TiffMessages> messages_;
    tiff* tiff_ = nullptr;
};

} // namespace tesmor::apps
