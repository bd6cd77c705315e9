// SPDX-License-Identifier: GPL-2.0-or-later
// Why something cannot be done now, for the tips of what is disabled.
#pragma once

#include <QString>

namespace tesmor::apps {

class Session;

// What needs focus motor and live image; empty when it can be done.
QString whyNot(const Session& session);

// A tip, and below it the reason if there is one.
QString withReason(const QString& tip, const QString& reason);

} // namespace tesmor::apps
