// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/placement.h"

#include <cmath>

namespace tesmor::apps {

QPointF Placement::shownAt(QPointF point) const
{
    const double cosine = scale * std::cos(angle);
    const double sine = scale * std::sin(angle);
    return {cosine * point.x() - sine * point.y() + right, sine * point.x() + cosine * point.y() + down};
}

Placement Placement::over(const Placement& inner) const
{
    const QPointF middle = shownAt({inner.right, inner.down});
    return {scale * inner.scale, angle + inner.angle, middle.x(), middle.y()};
}

} // namespace tesmor::apps
