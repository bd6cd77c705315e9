// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/locale.h"

#include "native.h"

namespace tesmor::platform {

std::uint32_t ansiCodePage() noexcept
{
    return GetACP();
}

std::uint16_t userLanguageId() noexcept
{
    return GetUserDefaultLangID();
}

} // namespace tesmor::platform
