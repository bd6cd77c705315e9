// Pictures of one field side by side, to be compared by eye.
#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace tesmor::apps {

struct ComparedPicture {
    QString title;
    QString note; // a line of figures below it
    QImage image; // all of one size
};

// The whole field in the first row; in the second a detail, at full resolution or larger. Needs a QGuiApplication.
QImage compare(const std::vector<ComparedPicture>& pictures, const QRect& detail);

// A quarter of each side: where `image` is furthest from `reference`. Same size, BGR888.
QRect mostDifferentPart(const QImage& image, const QImage& reference);

} // namespace tesmor::apps
