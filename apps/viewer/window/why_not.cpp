// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/why_not.h"

#include "viewer/session/session.h"

#include <QCoreApplication>

namespace tesmor::apps {

QString whyNot(const Session& session)
{
    if (!session.isFree())
        return QCoreApplication::translate("WhyNot", "Something is running; Stop (Esc) ends it.");
    if (!session.canFocus())
        return QCoreApplication::translate("WhyNot", "There is no live image; choose a camera in the menu Source.");
    return {};
}

QString withReason(const QString& tip, const QString& reason)
{
    return reason.isEmpty() ? tip : tip + '\n' + reason;
}

} // namespace tesmor::apps
