// SPDX-License-Identifier: GPL-2.0-or-later
// Which signals the worker takes: in callbacks those that the thread takes which started it, else none.
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <csignal>
#include <fstream>
#include <unistd.h>

namespace tesmor::test {

namespace {

class Signals : public LibraryTest {};

bool isBlocked(pid_t thread, int signal)
{
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    for (std::string key; status >> key;) {
        std::uint64_t signals = 0;
        if (key == "SigBlk:" && status >> std::hex >> signals)
            return signals >> (signal - 1) & 1;
    }
    return false;
}

TEST_F(Signals, AreThoseOfTheHostInCallbacksAlone)
{
    sigset_t hostBlocks;
    sigset_t kept;
    sigemptyset(&hostBlocks);
    sigaddset(&hostBlocks, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &hostBlocks, &kept);
    ASSERT_EQ(tesmor_init(), 1);
    pthread_sigmask(SIG_SETMASK, &kept, nullptr);

    pid_t worker = 0;
    CallRecorder recorder;
    recorder.then = [&](const Call& call) {
        worker = gettid();
        EXPECT_FALSE(isBlocked(worker, SIGINT)) << "result " << call.result;
        EXPECT_TRUE(isBlocked(worker, SIGUSR1)) << "result " << call.result;
        throw 0; // ends the command
    };
    const std::vector<std::uint8_t> image(8 * 24);
    std::vector<std::uint8_t> output(image.size());
    const std::uint8_t* const images[] = {image.data()};
    const std::function<void()> commands[] = {
        [&] { tesmor_start(40, CallRecorder::onDone, &recorder); },
        [&] { tesmor_manual(1.0, CallRecorder::onDone, &recorder); },
        [&] { tesmor_startif(40, 0, 1, CallRecorder::onFrame, &recorder, 0); },
        [&] { tesmor_fusion(images, 1, 8, 8, output.data(), CallRecorder::onFrame, &recorder); },
        [&] { tesmor_fusion(images, 1, 1, 1, output.data(), CallRecorder::onFrame, &recorder); }, // fails at once
    };
    for (const auto& command : commands) {
        command();
        waitUntilIdle();
        EXPECT_TRUE(isBlocked(worker, SIGINT));
    }
    EXPECT_EQ(recorder.calls().size(), std::size(commands));
}

} // namespace

} // namespace tesmor::test
