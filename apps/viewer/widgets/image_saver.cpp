// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/image_saver.h"

#include "images/output_file.h"

#include <QCoreApplication>

#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double MICROMETRES_PER_METRE = 1e6;

QString translate(const char* text)
{
    return QCoreApplication::translate("ImageSaver", text);
}

} // namespace

QString resultFilters()
{
    return translate(QT_TRANSLATE_NOOP("ImageSaver", "PNG image (*.png);;TIFF image (*.tif *.tiff)"));
}

void saveResult(const QString& file, const QImage& result, double micrometresPerPixel)
{
    QImage image = result;
    const int perMetre =
        micrometresPerPixel > 0 ? static_cast<int>(std::lround(MICROMETRES_PER_METRE / micrometresPerPixel)) : 0;
    if (perMetre > 0) {
        image.setDotsPerMeterX(perMetre);
        image.setDotsPerMeterY(perMetre);
    }
    writeOutputFile(file, image);
}

} // namespace tesmor::apps
