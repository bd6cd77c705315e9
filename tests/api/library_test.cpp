// SPDX-License-Identifier: GPL-2.0-or-later
// The load-time set-up.
#include "api/library.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

TEST(Locale, IsChineseByCodePageAndLanguageTogether)
{
    EXPECT_TRUE(isSimplifiedChinese(936, 2052));
    EXPECT_TRUE(isSimplifiedChinese(54936, 4100));
    EXPECT_TRUE(isSimplifiedChinese(51936, 4));
    EXPECT_FALSE(isSimplifiedChinese(936, 1033));
    EXPECT_FALSE(isSimplifiedChinese(950, 2052));
}

} // namespace

} // namespace tesmor::test
