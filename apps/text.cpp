#include "text.h"

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
    const QString minutesAndSeconds = QString("%1:%2").arg(seconds / 60 % 60, seconds < 3600 ? 0 : 2, 10, QChar('0'));
    const QString text = minutesAndSeconds.arg(seconds % 60, 2, 10, QChar('0'));
    return seconds < 3600 ? text : QString("%1:%2").arg(seconds / 3600).arg(text);
}

} // namespace tesmor::apps
