// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/tiff_file.h"

#include "images/tiff_messages.h"
#include "images/tiff_metadata.h"
#include "images/tiff_samples.h"
#include "terminal/errors.h"

#include <QFile>
#include <QTransform>

#include <tiffio.h>

#include <limits>
#include <new>

namespace tesmor::apps {

struct TiffFile::Layout {
    SampleLayout samples;
    bool direct;   // samples of 8 or 16 bits, read as they are; all else libtiff turns into 8-bit RGBA
    bool inverted; // 0 is white
    std::uint16_t orientation;

    bool lies() const
    {
        return orientation >= ORIENTATION_LEFTTOP;
    }
};

namespace {

std::uint16_t field(TIFF* file, std::uint32_t tag, std::uint16_t otherwise)
{
    std::uint16_t value = otherwise;
    return TIFFGetFieldDefaulted(file, tag, &value) ? value : otherwise;
}

// What is wrong with the samples of a page, and what to do; empty if nothing is.
QString refusal(TIFF* file)
{
    switch (field(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)) {
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID:
        break;
    case SAMPLEFORMAT_IEEEFP:
        return "holds floating-point numbers; convert it to 16 bits";
    default:
        return "holds numbers other than unsigned integers; convert it to 16 bits";
    }
    if (const int bits = field(file, TIFFTAG_BITSPERSAMPLE, 1); bits > 16 || (bits > 8 && bits < 16))
        return QString("has %1 bits per sample; convert it to 16 bits").arg(bits);
    switch (field(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK)) {
    case PHOTOMETRIC_SEPARATED:
        return "is a CMYK image, for printing; convert it to RGB";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
        return "is a Lab or LogLuv image; convert it to RGB";
    case PHOTOMETRIC_CFA:
        return "is a raw image of a colour sensor; convert it to RGB";
    default:
        return {};
    }
}

QImage upright(const QImage& image, std::uint16_t orientation)
{
    QImage turned = image;
    if (orientation >= ORIENTATION_LEFTTOP) { // rows and columns are swapped
        turned = image.transformed(QTransform().rotate(90)).mirrored(true, false);
        orientation = static_cast<std::uint16_t>(orientation - ORIENTATION_LEFTTOP + ORIENTATION_TOPLEFT);
    }
    const bool fromRight = orientation == ORIENTATION_TOPRIGHT || orientation == ORIENTATION_BOTRIGHT;
    const bool fromBottom = orientation == ORIENTATION_BOTRIGHT || orientation == ORIENTATION_BOTLEFT;
    return fromRight || fromBottom ? turned.mirrored(fromRight, fromBottom) : turned;
}

} // namespace

bool TiffFile::isTiff(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray magic = file.read(4);
    constexpr int CLASSIC = 42;
    constexpr int BIG = 43;
    return magic.size() == 4 &&
           ((magic.startsWith("II") && (magic[2] == CLASSIC || magic[2] == BIG) && magic[3] == 0) ||
            (magic.startsWith("MM") && magic[2] == 0 && (magic[3] == CLASSIC || magic[3] == BIG)));
}

TiffFile::TiffFile(const QString& file) : file_(file), messages_(std::make_unique<TiffMessages>())
{
    // Not mapped into memory, where a file that is cut short meanwhile would end the program.
    tiff_ = TIFFOpenExt(QFile::encodeName(file).constData(), "rm", optionsWith(*messages_).get());
    requireSound({file, 0, file}, tiff_ != nullptr);
}

TiffFile::~TiffFile()
{
    if (tiff_ != nullptr)
        TIFFClose(tiff_);
}

int TiffFile::pageCount()
{
    *messages_ = {};
    const auto count = static_cast<int>(TIFFNumberOfDirectories(tiff_)); // libtiff stops at a million
    requireSound({file_, 0, file_}, messages_->error.isEmpty());         // it keeps to what it found before a gap
    return count;
}

DescribedFile TiffFile::describe()
{
    const int count = pageCount();
    const Layout first = layoutOf({file_, 0, file_});
    const QSize size = first.samples.size;
    const char* text = nullptr;
    TIFFGetField(tiff_, TIFFTAG_IMAGEDESCRIPTION, &text);
    return {file_, text, count, std::int64_t{size.width()} * size.height() * first.samples.samples,
            first.direct ? imageRoom(tiff_, first.samples) : 1};
}

std::uint64_t TiffFile::find(int page, const QString& name)
{
    constexpr int NEAR = 100; // pages; one that is further away is sooner found from the first, by links alone
    *messages_ = {};
    const auto from = static_cast<int>(TIFFCurrentDirectory(tiff_));
    bool found = true;
    if (page < from || page > from + NEAR) {
        found = TIFFSetDirectory(tiff_, static_cast<tdir_t>(page)) != 0;
    } else {
        for (int i = from; found && i < page; ++i)
            found = TIFFReadDirectory(tiff_) != 0;
    }
    requireSound({file_, 0, name}, found);
    return TIFFCurrentDirOffset(tiff_);
}

void TiffFile::requireSound(const ImageSource& page, bool complete) const
{
    if (complete && !messages_->cut)
        return;
    QString error = messages_->error;
    error.remove(file_ + ": "); // libtiff names it, too
    const QString reason = !error.isEmpty() ? error : messages_->cut ? "the end is missing" : "its sizes make no sense";
    throw UserError(QString("%1: damaged (%2); copy or save it again").arg(page.name, reason));
}

void TiffFile::select(const ImageSource& page)
{
    *messages_ = {};
    requireSound(page, (page.page == 0 ? TIFFSetDirectory(tiff_, 0) : TIFFSetSubDirectory(tiff_, page.page)) != 0);
}

TiffFile::Layout TiffFile::layoutOf(const ImageSource& page)
{
    select(page);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(tiff_, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff_, TIFFTAG_IMAGELENGTH, &height);
    constexpr std::uint32_t MOST = std::numeric_limits<std::int32_t>::max();
    constexpr std::uint64_t MOST_AREA = 1ULL << 46; // so that the bytes of 65,535 samples a pixel can be counted
    requireSound(page, width > 0 && height > 0 && width <= MOST && height <= MOST &&
                           std::uint64_t{width} * height <= MOST_AREA);
    if (const QString problem = refusal(tiff_); !problem.isEmpty())
        throw UserError(page.name + ": " + problem);

    Layout layout{};
    const int bits = field(tiff_, TIFFTAG_BITSPERSAMPLE, 1);
    const int samples = field(tiff_, TIFFTAG_SAMPLESPERPIXEL, 1);
    const int photometric = field(tiff_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    const bool grey = photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
    layout.samples = {QSize(static_cast<int>(width), static_cast<int>(height)), bits, samples, grey ? 1 : 3,
                      field(tiff_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE};
    layout.inverted = photometric == PHOTOMETRIC_MINISWHITE;
    layout.orientation = field(tiff_, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    layout.direct =
        (bits == 8 || bits == 16) && (grey || photometric == PHOTOMETRIC_RGB) && samples >= layout.samples.colours;
    if (grey && samples > 2)
        throw UserError(QString("%1: has %2 channels in each pixel; save each channel as a page of its own")
                            .arg(page.name)
                            .arg(samples));
    char problem[1024] = ""; // as long as libtiff wants it
    if (!layout.direct && !TIFFRGBAImageOK(tiff_, problem))
        throw UserError(QString("%1: cannot be decoded (%2); convert it to 8-bit RGB").arg(page.name, problem));
    return layout;
}

ImageHeader TiffFile::readHeader(const ImageSource& page)
{
    const Layout layout = layoutOf(page);
    const QSize size = layout.samples.size;
    return {layout.lies() ? size.transposed() : size, layout.direct && layout.samples.bits == 16};
}

QImage TiffFile::read(const ImageSource& page)
{
    const Layout layout = layoutOf(page);
    QImage image;
    if (layout.direct) {
        image = readSamples(tiff_, layout.samples, page.behind);
        if (layout.inverted)
            image.invertPixels();
    } else {
        image = QImage(layout.samples.size, QImage::Format_RGBX8888);
        if (image.isNull())
            throw std::bad_alloc();
        // Asked for the orientation that it has, libtiff turns nothing.
        if (!TIFFReadRGBAImageOriented(tiff_, static_cast<std::uint32_t>(image.width()),
                                       static_cast<std::uint32_t>(image.height()),
                                       reinterpret_cast<std::uint32_t*>(image.bits()), layout.orientation, 1))
            image = {};
        else if (layout.samples.colours == 1)
            image.convertTo(QImage::Format_Grayscale8);
    }
    requireSound(page, !image.isNull());
    readMetadata(tiff_, page.scale, image);
    return upright(image, layout.orientation);
}

} // namespace tesmor::apps
