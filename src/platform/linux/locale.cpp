// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/locale.h"

#include <clocale>
#include <langinfo.h>
#include <string_view>

namespace tesmor::platform {

std::uint32_t ansiCodePage() noexcept
{
    const std::string_view characterSet = nl_langinfo(CODESET); // NOLINT(concurrency-mt-unsafe): at load
    if (characterSet == "GB2312" || characterSet == "GBK")
        return 936;
    if (characterSet == "GB18030")
        return 54936;
    return 0;
}

std::uint16_t userLanguageId() noexcept
{
    const char* locale = std::setlocale(LC_CTYPE, nullptr); // NOLINT(concurrency-mt-unsafe): at load
    const std::string_view name = locale ? locale : "";
    if (name.starts_with("zh_CN"))
        return 2052;
    if (name.starts_with("zh_SG"))
        return 4100;
    return 0;
}

} // namespace tesmor::platform
