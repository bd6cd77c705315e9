// SPDX-License-Identifier: GPL-2.0-or-later
// The parts of an autofocus search, in the order in which they follow each other.
#pragma once

namespace tesmor::apps {

enum class SearchPhase { PROBE, COARSE, FINE, RETURN };

// English, for files and as the source text of a translation in the context "SearchPhase".
const char* phaseName(SearchPhase phase);

} // namespace tesmor::apps
