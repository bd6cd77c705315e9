#pragma once

namespace tesmor::apps {

// The library's worker runs as long as this lives. One at a time. Throws UserError when there is no thread to be had.
class LibrarySession {
public:
    LibrarySession();
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
};

} // namespace tesmor::apps
