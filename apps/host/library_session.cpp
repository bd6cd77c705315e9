#include "host/library_session.h"

#include "tesmor.h"
#include "tesmor/subcommand.h"

namespace tesmor::apps {

LibrarySession::LibrarySession()
{
    if (tesmor_init() == 0)
        throw UserError("the system has no thread to spare; close other programs");
}

LibrarySession::~LibrarySession()
{
    tesmor_fini();
}

} // namespace tesmor::apps
