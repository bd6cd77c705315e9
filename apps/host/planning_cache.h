// SPDX-License-Identifier: GPL-2.0-or-later
// What FFTW learns when it plans a fusion, kept in the user's cache folder: so a machine plans once for each image
// size, and not in every run. A cache that is missing, damaged, from another FFTW or another machine, or not writable
// costs time and changes nothing else.
#pragma once

namespace tesmor::apps {

// Neither may be called while a fusion is running.

// Before a fusion: makes the results of earlier runs known to FFTW.
void loadPlanning();

// After a fusion. Within an InterruptGuard, so that no partial file remains.
void savePlanning();

} // namespace tesmor::apps
