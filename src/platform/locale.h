// SPDX-License-Identifier: GPL-2.0-or-later
// The process's code page and its user's language, as Windows numbers them. Neither blocks or fails.
#pragma once

#include <cstdint>

namespace tesmor::platform {

// The ANSI code page of the process; on Linux the one that the current locale's character set corresponds to, else 0.
std::uint32_t ansiCodePage() noexcept;

// The user's default language; on Linux that of the current locale where it is a Chinese one, else 0.
std::uint16_t userLanguageId() noexcept;

} // namespace tesmor::platform
