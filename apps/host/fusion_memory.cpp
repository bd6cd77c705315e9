#include "host/memory.h"

#include <QByteArray>
#include <QFile>

namespace tesmor::apps {

std::optional<std::uint64_t> availableMemory()
{
    QFile file("/proc/meminfo");
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("MemAvailable:"))
            return line.simplified().split(' ').value(1).toULongLong() * 1024; // the system counts in kB
    }
    return std::nullopt;
}

} // namespace tesmor::apps
