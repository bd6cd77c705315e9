// The load-time set-up.
#include "api/library.h"

#include "support/library_test.h"

namespace tesmor::test {

namespace {

TEST_F(LibraryTest, LoadsIdleWithItsEventsSet)
{
    EXPECT_EQ(library.commandBlock.command, CMD_IDLE);
    EXPECT_EQ(library.commandBlock.imageCount, 0u);
    EXPECT_FALSE(library.commandEvent.waitFor(0));
    EXPECT_TRUE(library.idleEvent.waitFor(0));
    EXPECT_FALSE(library.idleEvent.waitFor(0));
    EXPECT_TRUE(library.frameEvent.waitFor(0));
    EXPECT_EQ(tesmor_doing(), 0);
}

TEST_F(LibraryTest, LuminanceWeighsGreenWith578)
{
    EXPECT_EQ(library.lumaTables.lumaR[200], 200.0 * 0.299);
    EXPECT_EQ(library.lumaTables.lumaG[200], 200.0 * 0.578);
    EXPECT_EQ(library.lumaTables.lumaB[200], 200.0 * 0.114);
}

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
