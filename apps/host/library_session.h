// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

namespace tesmor::apps {

// The library's worker runs for the lifetime of this object. One at a time. Throws UserError if it cannot be started.
class LibrarySession {
public:
    LibrarySession();
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
};

} // namespace tesmor::apps
