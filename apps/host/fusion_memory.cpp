// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/fusion_memory.h"

#include "terminal/text.h"

#include <QByteArray>
#include <QFile>

#include <optional>

namespace tesmor::apps {

namespace {

constexpr std::uint64_t FUSION_BYTES_PER_PIXEL = 36;
constexpr std::uint64_t IMAGE_BYTES_PER_PIXEL = 3;

// Bytes; nothing where the system does not say.
std::optional<std::uint64_t> availableMemory()
{
    QFile file("/proc/meminfo");
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("MemAvailable:"))
            return line.simplified().split(' ').value(1).toULongLong() * 1024; // given in kB
    }
    return std::nullopt;
}

} // namespace

std::uint64_t fusionMemory(QSize size, std::size_t imageCount)
{
    const auto pixels = static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
    return pixels * (FUSION_BYTES_PER_PIXEL + IMAGE_BYTES_PER_PIXEL * (imageCount + 1));
}

bool hasMemory(std::uint64_t needed)
{
    const auto available = availableMemory();
    return !available || needed <= *available;
}

void requireFusionMemory(std::uint64_t needed)
{
    if (!hasMemory(needed))
        throw fusionMemoryError(needed);
}

UserError fusionMemoryError(std::uint64_t needed)
{
    return UserError(
        QString("not enough memory: about %1 needed; close other programs, or merge fewer or smaller images")
            .arg(memoryText(needed)));
}

} // namespace tesmor::apps
