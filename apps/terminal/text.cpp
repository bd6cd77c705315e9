// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/text.h"

#include <algorithm>
#include <cstdio>

namespace tesmor::apps {

QString sizeText(QSize size)
{
    return QString("%1 x %2").arg(size.width()).arg(size.height());
}

QString memoryText(std::uint64_t bytes)
{
    if (bytes < 1'000'000)
        return QString("1 MB");
    if (bytes < 1'000'000'000)
        return QString("%1 MB").arg(bytes / 1'000'000);
    return QString("%1 GB").arg(static_cast<double>(bytes) * 1e-9, 0, 'f', 1);
}

QString durationText(std::chrono::duration<double> duration)
{
    const auto seconds = static_cast<std::int64_t>(duration.count());
    if (seconds < 60)
        return QString("%1 s").arg(seconds);
    if (seconds < 3600)
        return QString("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
    return QString("%1 h %2 min").arg(seconds / 3600).arg(seconds / 60 % 60);
}

QString barText(double share, int length)
{
    const int filled = static_cast<int>(std::clamp(share, 0.0, 1.0) * length);
    return QString("[%1%2]").arg(QString(filled, '#'), QString(length - filled, '.'));
}

void printLine(const QString& text)
{
    std::fputs(qPrintable(text + "\n"), stdout);
    std::fflush(stdout);
}

} // namespace tesmor::apps
