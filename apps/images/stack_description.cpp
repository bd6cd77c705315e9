// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/stack_description.h"

#include "terminal/errors.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

namespace tesmor::apps {

namespace {

// As Python's tifffile describes pages by default, if it was told to write only the first.
std::int64_t imagesOfShape(const DescribedFile& file)
{
    const QJsonDocument description = QJsonDocument::fromJson(file.description);
    if (!description["truncated"].toBool())
        return 1;
    double samples = 1;
    for (const QJsonValue& length : description["shape"].toArray())
        samples *= length.toInt();
    const double images = samples / static_cast<double>(file.pageSamples);
    return images >= 1 && images <= MOST_PAGES ? static_cast<std::int64_t>(images) : 1;
}

} // namespace

StackDescription describeStack(const DescribedFile& file)
{
    const QByteArray text = file.description.trimmed();
    if (text.startsWith("ImageJ="))
        return readImagejLines(file);
    if (text.startsWith('<') && text.contains("OME"))
        return readOmeXml(file);
    const std::int64_t images = imagesOfShape(file);
    const bool isBehind = liesBehindOnePage(file, images);
    return {plainPlanes(isBehind ? static_cast<int>(images) : file.pageCount), {}, {}, isBehind};
}

bool liesBehindOnePage(const DescribedFile& file, std::int64_t images)
{
    if (file.pageCount != 1 || images < 2 || file.room < 2)
        return false;
    if (file.room < images)
        throw UserError(QString("%1: damaged (only %2 of its %3 images are there); copy or save it again")
                            .arg(file.name)
                            .arg(file.room)
                            .arg(images));
    return true;
}

std::vector<Plane> plainPlanes(int pageCount)
{
    std::vector<Plane> planes;
    for (int page = 0; page < pageCount; ++page)
        planes.push_back({page, 0, 0, page});
    return planes;
}

double metresOf(const QString& unit)
{
    static const QHash<QString, double> metres = {
        {"m", 1},
        {"cm", 1e-2},
        {"mm", 1e-3},
        {QString(QChar(0xb5)) + 'm', 1e-6},  // the micro sign
        {QString(QChar(0x3bc)) + 'm', 1e-6}, // the Greek letter
        {"\\u00B5m", 1e-6},                  // as ImageJ writes it
        {"um", 1e-6},
        {"micron", 1e-6},
        {"microns", 1e-6},
        {"nm", 1e-9},
        {"pm", 1e-12},
        {QString(QChar(0xc5)), 1e-10}, // ångström
        {"in", 0.0254},
        {"inch", 0.0254},
    };
    return metres.value(unit.trimmed());
}

} // namespace tesmor::apps
