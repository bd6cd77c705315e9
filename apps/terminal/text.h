// SPDX-License-Identifier: GPL-2.0-or-later
// Text for users.
#pragma once

#include <QSize>
#include <QString>

#include <chrono>
#include <cstdint>

namespace tesmor::apps {

// "1200 x 675"
QString sizeText(QSize size);

// "133 MB", "1.5 GB"; powers of 1000
QString memoryText(std::uint64_t bytes);

// "7 s", "2 min 45 s", "1 h 2 min"; truncated, not rounded
QString durationText(std::chrono::duration<double> duration);

// "[######....]": the filled share, 0 to 1, of `length` characters
QString barText(double share, int length);

// On standard output, flushed.
void printLine(const QString& text);

} // namespace tesmor::apps
