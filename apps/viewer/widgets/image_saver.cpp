// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/image_saver.h"

#include "images/output_file.h"

#include <QCoreApplication>

#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double MICROMETRES_PER_METRE = 1e6;

// 0 where the size of a pixel is not known.
int dotsPerMetre(double micrometresPerPixel)
{
    return micrometresPerPixel > 0 ? static_cast<int>(std::lround(MICROMETRES_PER_METRE / micrometresPerPixel)) : 0;
}

} // namespace

QString resultFilters()
{
    return QCoreApplication::translate("ImageSaver", "PNG image (*.png);;TIFF image (*.tif *.tiff)");
}

QString slicesFilters()
{
    return QCoreApplication::translate("ImageSaver", "TIFF image of several pages (*.tif *.tiff)");
}

void saveResult(const QString& file, const QImage& result, double micrometresPerPixel)
{
    QImage image = result;
    image.setDotsPerMeterX(dotsPerMetre(micrometresPerPixel));
    image.setDotsPerMeterY(dotsPerMetre(micrometresPerPixel));
    writeOutputFile(file, image);
}

void saveSlices(const QString& file, const QList<QImage>& slices, double micrometresPerPixel)
{
    writeOutputPages(file, slices, dotsPerMetre(micrometresPerPixel));
}

} // namespace tesmor::apps
