// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/stack_description.h"

#include <QHash>

namespace tesmor::apps {

StackDescription describeStack(const DescribedFile& file)
{
    const QByteArray text = file.description.trimmed();
    if (text.startsWith("ImageJ="))
        return readImagejLines(file);
    if (text.startsWith('<') && text.contains("OME"))
        return readOmeXml(file);
    return {plainPlanes(file.pageCount), {}, {}};
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
