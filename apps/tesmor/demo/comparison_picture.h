// SPDX-License-Identifier: GPL-2.0-or-later
// Images of one field side by side, for comparison by eye.
#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace tesmor::apps {

struct ComparedPicture {
    QString title;
    QString note; // a line of figures below it
    QImage image; // all have the same size
};

// The whole field in the first row; in the second a detail, at full resolution or larger. Needs a QGuiApplication.
QImage compare(const std::vector<ComparedPicture>& pictures, const QRect& detail);

// Where `image` differs most from `reference`; a quarter of each side. Same size, BGR888.
QRect mostDifferentPart(const QImage& image, const QImage& reference);

} // namespace tesmor::apps
