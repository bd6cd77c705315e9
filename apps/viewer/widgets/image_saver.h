// SPDX-License-Identifier: GPL-2.0-or-later
// Saves a result and its slices. Both functions throw UserError, whose message names the file, the problem and the
// remedy; the file then is what it was before. Any thread; they may take seconds, so not the window's.
#pragma once

#include <QImage>
#include <QList>
#include <QString>

namespace tesmor::apps {

// The filters of a file dialogue, translated.
QString resultFilters(); // PNG, TIFF
QString slicesFilters(); // TIFF

// The format is that of the name: .png, .tif or .tiff.
//   micrometresPerPixel   stored as resolution; 0 when it is not known
void saveResult(const QString& file, const QImage& result, double micrometresPerPixel);

// As one TIFF of several pages, in order.
void saveSlices(const QString& file, const QList<QImage>& slices, double micrometresPerPixel);

} // namespace tesmor::apps
