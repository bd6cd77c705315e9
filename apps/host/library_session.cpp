// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/library_session.h"

#include "terminal/errors.h"
#include "tesmor.h"

namespace tesmor::apps {

LibrarySession::LibrarySession()
{
    if (tesmor_init() == 0)
        throw UserError("could not start a thread; close other programs");
}

LibrarySession::~LibrarySession()
{
    tesmor_fini();
}

} // namespace tesmor::apps
