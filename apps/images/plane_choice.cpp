// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/plane_choice.h"

#include "terminal/errors.h"

#include <QStringList>

#include <algorithm>
#include <set>

namespace tesmor::apps {

namespace {

// "2 channels (1 DAPI, 2 GFP)", "only channel 2", "30 points in time"
QString listText(const QString& what, const std::set<int>& numbers, const QMap<int, QString>& names)
{
    if (numbers.size() == 1)
        return QString("only %1 %2").arg(what).arg(*numbers.begin() + 1);
    QStringList named;
    for (const int number : numbers) {
        if (!names.value(number).isEmpty())
            named.append(QString("%1 %2").arg(number + 1).arg(names.value(number)));
    }
    const QString list = named.isEmpty() ? QString() : QString(" (%1)").arg(named.join(", "));
    return QString("%1 %2%3").arg(numbers.size()).arg(what == "time" ? "points in time" : "channels", list);
}

} // namespace

std::vector<Plane> choosePlanes(const QString& file, const StackDescription& stack, const PlaneChoice& choice)
{
    std::set<int> channels;
    std::set<int> times;
    for (const Plane& plane : stack.planes) {
        channels.insert(plane.channel);
        times.insert(plane.time);
    }
    QStringList has;
    QString how;
    const auto require = [&](const QString& what, const std::set<int>& numbers, std::optional<int> chosen,
                             const QMap<int, QString>& names) {
        if (chosen ? numbers.contains(*chosen - 1) : numbers.size() == 1)
            return;
        has.append(listText(what, numbers, names));
        how += QString(" --%1 %2").arg(what).arg(*numbers.begin() + 1);
    };
    require("channel", channels, choice.channel, stack.channelNames);
    require("time", times, choice.time, {});
    if (!has.isEmpty())
        throw UserError(QString("%1: has %2; choose one, as in%3").arg(file, has.join(" and "), how));

    std::vector<Plane> planes;
    for (const Plane& plane : stack.planes) {
        if ((!choice.channel || plane.channel == *choice.channel - 1) &&
            (!choice.time || plane.time == *choice.time - 1))
            planes.push_back(plane);
    }
    if (planes.empty()) // both exist, but not together
        throw UserError(QString("%1: has no page for channel %2 at time %3; choose others with --channel and --time")
                            .arg(file)
                            .arg(choice.channel.value_or(1))
                            .arg(choice.time.value_or(1)));
    std::ranges::stable_sort(planes, {}, &Plane::slice);
    return planes;
}

} // namespace tesmor::apps
