// SPDX-License-Identifier: GPL-2.0-or-later
// Writes a TIFF file of one or more pages, through libtiff.
#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>

#include <cstdint>
#include <memory>

struct tiff;

namespace tesmor::apps {

struct TiffMessages;

class TiffWriter {
public:
    // Both throw UserError, which names the file and the remedy; the file is then incomplete.

    //   device      open for reading and writing, seekable, empty; outlives this object
    //   name        of the file, for messages
    //   mostBytes   of all pages together, uncompressed; from 4 GB on it becomes a BigTIFF, which fewer programs read
    TiffWriter(QIODevice& device, const QString& name, std::uint64_t mostBytes);

    // Grey images stay grey; 16 bits stay 16 bits; everything else becomes 8-bit RGB. With the image's resolution
    // (dotsPerMeterX and Y), if it was set, and its colour profile. Compressed without loss.
    void addPage(const QImage& image);

    // After the last page. Without it the destructor does the same and keeps failures to itself.
    void finish();

    ~TiffWriter();
    TiffWriter(const TiffWriter&) = delete;
    TiffWriter& operator=(const TiffWriter&) = delete;

private:
    void require(bool done) const;

    QIODevice& device_;
    const QString name_;
    std::unique_ptr<TiffMessages> messages_;
    tiff* tiff_ = nullptr;
};

} // namespace tesmor::apps
