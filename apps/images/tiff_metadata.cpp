// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/tiff_metadata.h"

#include <QColorSpace>

#include <tiffio.h>

#include <cmath>

namespace tesmor::apps {

namespace {

// 0 if it is none.
int dotsPerMeter(double dots)
{
    return dots >= 1 && dots < 1e9 ? static_cast<int>(std::lround(dots)) : 0;
}

// The resolution of the page, in a unit of so many metres.
int dotsPerMeter(tiff* file, std::uint32_t tag, double unit)
{
    float resolution = 0;
    return TIFFGetField(file, tag, &resolution) ? dotsPerMeter(static_cast<double>(resolution) / unit) : 0;
}

double resolutionUnit(tiff* file, const PixelScale& scale)
{
    std::uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(file, TIFFTAG_RESOLUTIONUNIT, &unit);
    return unit == RESUNIT_INCH ? 0.0254 : unit == RESUNIT_CENTIMETER ? 0.01 : scale.resolutionUnit;
}

} // namespace

void readMetadata(tiff* file, const PixelScale& scale, QImage& image)
{
    if (!scale.pixelSize.isEmpty()) { // which drops what is 0
        image.setDotsPerMeterX(dotsPerMeter(1 / scale.pixelSize.width()));
        image.setDotsPerMeterY(dotsPerMeter(1 / scale.pixelSize.height()));
    } else if (const double unit = resolutionUnit(file, scale); unit > 0) {
        image.setDotsPerMeterX(dotsPerMeter(file, TIFFTAG_XRESOLUTION, unit));
        image.setDotsPerMeterY(dotsPerMeter(file, TIFFTAG_YRESOLUTION, unit));
    }

    std::uint32_t size = 0;
    const void* profile = nullptr;
    if (TIFFGetField(file, TIFFTAG_ICCPROFILE, &size, &profile)) // which Qt keeps even if it cannot convert by it
        image.setColorSpace(QColorSpace::fromIccProfile(QByteArray(static_cast<const char*>(profile), size)));
}

void writeMetadata(tiff* file, const QImage& image)
{
    const QImage unknown(1, 1, QImage::Format_Grayscale8); // Qt's guess, the screen's resolution
    if (image.dotsPerMeterX() != unknown.dotsPerMeterX() || image.dotsPerMeterY() != unknown.dotsPerMeterY()) {
        TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        TIFFSetField(file, TIFFTAG_XRESOLUTION, image.dotsPerMeterX() / 100.0);
        TIFFSetField(file, TIFFTAG_YRESOLUTION, image.dotsPerMeterY() / 100.0);
    }
    const QByteArray profile = image.colorSpace().iccProfile();
    if (!profile.isEmpty())
        TIFFSetField(file, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.constData());
}

} // namespace tesmor::apps
