// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/focus_units.h"

#include "terminal/errors.h"

#include <QStringList>

#include <cmath>

namespace tesmor::apps {

std::int32_t unitsFor(double steps, std::uint16_t magnification)
{
    const double unit = stepsPerUnit(magnification);
    return static_cast<std::int32_t>(std::clamp(std::round(steps / unit), 1.0, std::floor(LARGEST_MOVE / unit)));
}

QString magnificationList()
{
    QStringList names;
    for (const FocusObjective& objective : FOCUS_OBJECTIVES)
        names += QString::number(objective.magnification);
    const QString last = names.takeLast();
    return names.join(", ") + " or " + last;
}

QString spacingUnitList()
{
    QStringList units;
    for (const FocusObjective& objective : FOCUS_OBJECTIVES)
        units += QString("%1x: %2").arg(objective.magnification).arg(objective.stepsPerUnit);
    units.first() += " motor steps";
    return units.join(", ");
}

std::uint16_t parseMagnification(const QString& text)
{
    for (const FocusObjective& objective : FOCUS_OBJECTIVES) {
        if (text == QString::number(objective.magnification))
            return objective.magnification;
    }
    throw UsageError(QString("--magnification is '%1'; it must be %2").arg(text, magnificationList()));
}

} // namespace tesmor::apps
