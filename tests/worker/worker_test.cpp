// SPDX-License-Identifier: GPL-2.0-or-later
// The drive that a manual move leaves open.
#include "support/call_recorder.h"
#include "support/library_test.h"

namespace tesmor::test {

namespace {

class ManualDrive : public ScriptedLibraryTest {
protected:
    ManualDrive()
    {
        system.timePasses = true; // no frames come
        tesmor_init();
    }

    std::string requests()
    {
        std::string codes;
        for (const std::string& line : system.log()) {
            if (line.starts_with("request"))
                codes += line.substr(19, 3);
        }
        return codes;
    }
};

// That two drives are never open at once is checked by the scripted system.
TEST_F(ManualDrive, IsOpenUntilTheNextCommandThatMovesAResetOrTheEnd)
{
    CallRecorder recorder;
    bool openInReport = false;
    recorder.then = [&](const Call&) { openInReport = system.isOpen(); };
    struct Case {
        const char* name;
        std::function<std::int32_t()> post;
        const char* requestsAfterTheMove;
        bool openInReport;
        bool openAfter;
    };
    const Case cases[] = {
        {"manual", [&] { return tesmor_manual(1, CallRecorder::onDone, &recorder); }, " D3 D2 D1", true, true},
        {"stack", [&] { return tesmor_startif(4, 1, 1, CallRecorder::onFrame, &recorder, 1); }, " D3 D2 D1 D1 D3", true,
         false},
        {"autofocus", [&] { return tesmor_start(4, CallRecorder::onDone, &recorder); }, " D3 D2 D1 D1 D1 D3", false,
         false},
        {"reset", tesmor_reset, " D3", false, false},
        {"stop", tesmor_stop, "", false, true},
        {"fini", tesmor_fini, " D3", false, false},
    };
    for (const Case& c : cases) {
        tesmor_reset();
        waitUntilIdle();
        system.reset({0});
        openInReport = false;
        tesmor_manual(1, nullptr, nullptr);
        c.post();
        waitUntilIdle();
        EXPECT_EQ(requests(), std::string(" D2 D1") + c.requestsAfterTheMove) << c.name;
        EXPECT_EQ(openInReport, c.openInReport) << c.name;
        EXPECT_EQ(system.isOpen(), c.openAfter) << c.name;
    }
}

} // namespace

} // namespace tesmor::test
