// SPDX-License-Identifier: GPL-2.0-or-later
#include "charts/search_phase.h"

#include <QtGlobal>

namespace tesmor::apps {

const char* phaseName(SearchPhase phase)
{
    switch (phase) {
    case SearchPhase::PROBE:
        return QT_TRANSLATE_NOOP("SearchPhase", "probe");
    case SearchPhase::COARSE:
        return QT_TRANSLATE_NOOP("SearchPhase", "coarse sweep");
    case SearchPhase::FINE:
        return QT_TRANSLATE_NOOP("SearchPhase", "fine sweep");
    case SearchPhase::RETURN:
        break;
    }
    return QT_TRANSLATE_NOOP("SearchPhase", "return");
}

} // namespace tesmor::apps
