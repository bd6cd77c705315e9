// SPDX-License-Identifier: GPL-2.0-or-later
// Threads that post, abort, ask, feed frames and re-initialise as they please, on the virtual microscope.
// Longer, with another seed each time: system_tests --gtest_filter='Storm*' --gtest_repeat=80 --gtest_shuffle
// What a host must not do is left out: no post comes from a callback, and tesmor_init and tesmor_fini come from one
// thread in turn. A post that finds the worker gone waits for the next tesmor_init, so the last one follows all posts.
#include "microscope/virtual_microscope.h"
#include "support/library_test.h"
#include "support/process_figures.h"

#include <array>
#include <cstdlib>
#include <deque>
#include <random>
#include <set>

namespace tesmor::test {

namespace {

constexpr unsigned long COMMANDS = 1200;
constexpr std::size_t POSTERS = 4;
constexpr std::uint32_t SIDE = 16; // pixels of a fused image
constexpr std::uint16_t SLICES = 3;
constexpr auto PATIENCE = std::chrono::seconds(60);

std::atomic<unsigned long> progress{0}; // posts and callbacks; what the watchdog looks at

unsigned seedOfThisRun()
{
    return static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed());
}

enum class Kind { manual, autofocus, stack, notices, capture, fusion };

// What the host heard of one command; it outlives the storm, as a late frame may still come.
struct Heard {
    Kind kind;
    std::atomic<int> frames{0};
    std::atomic<int> results{0};
    std::atomic<std::int32_t> result{0};

    explicit Heard(Kind kindOfCommand) : kind(kindOfCommand) {}

    void end(std::int32_t code)
    {
        result = code;
        ++results;
    }

    static void onDone(void* context, std::int32_t result)
    {
        ++progress;
        static_cast<Heard*>(context)->end(result);
    }

    static void onFrame(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        ++progress;
        auto& heard = *static_cast<Heard*>(context);
        if (heard.kind == Kind::fusion ? image != nullptr : !image && result != TESMOR_SUCCESS)
            heard.end(result);
        else if (heard.kind != Kind::fusion)
            ++heard.frames;
    }

    bool isInOrder() const
    {
        const std::set<std::int32_t> possible =
            kind == Kind::fusion ? std::set<std::int32_t>{TESMOR_SUCCESS, TESMOR_ABORTED}
                                 : std::set<std::int32_t>{TESMOR_SUCCESS, TESMOR_STACK_DONE, TESMOR_MOVE_FAILED,
                                                          TESMOR_ABORTED, TESMOR_NO_FRAME};
        switch (kind) {
        case Kind::capture:
            return results == 0 && frames <= 1;
        case Kind::stack:
            return results == 1 && frames <= SLICES && possible.contains(result);
        case Kind::notices:
            return results == 1 && frames == SLICES && result == TESMOR_STACK_DONE;
        default:
            return results == 1 && frames == 0 && possible.contains(result);
        }
    }
};

// One of the threads of the storm; `at` says where it stands.
class Poster {
public:
    explicit Poster(unsigned long number) : random_(seedOfThisRun() * 1000 + number) {}

    void run(unsigned long commands)
    {
        for (unsigned long i = 0; i < commands; ++i)
            postAny();
        at = "done";
    }

    std::deque<Heard> heard;
    std::atomic<const char*> at{"start"};

private:
    void postAny()
    {
        switch (random_() % 10) {
        case 0:
            return postPlain("tesmor_stop", tesmor_stop);
        case 1:
            return postPlain("tesmor_cancelif", tesmor_cancelif);
        case 2:
            return postPlain("tesmor_reset", tesmor_reset);
        case 3:
        case 4: {
            Heard& h = add(Kind::manual, "tesmor_manual");
            return posted(tesmor_manual(static_cast<double>(random_() % 40) - 20, Heard::onDone, &h));
        }
        case 5: {
            Heard& h = add(Kind::autofocus, "tesmor_start");
            return posted(tesmor_start(40, Heard::onDone, &h));
        }
        case 6: {
            Heard& h = add(Kind::stack, "tesmor_startif");
            return posted(tesmor_startif(20, SLICES, 1, Heard::onFrame, &h, 0));
        }
        case 7: {
            Heard& h = add(Kind::notices, "tesmor_startif with notices");
            return posted(tesmor_startif(20, SLICES, -1, Heard::onFrame, &h, 1));
        }
        case 8: {
            Heard& h = add(Kind::capture, "tesmor_capture");
            return posted(tesmor_capture(Heard::onFrame, &h));
        }
        default: {
            Heard& h = add(Kind::fusion, "tesmor_fusion");
            static constexpr std::array<std::uint8_t, SIDE * SIDE * 3> image{};
            const std::uint8_t* const images[] = {image.data(), image.data()};
            return posted(tesmor_fusion(images, 2, SIDE, SIDE, output_.data(), Heard::onFrame, &h));
        }
        }
    }

    Heard& add(Kind kind, const char* name)
    {
        at = name;
        return heard.emplace_back(kind);
    }

    void postPlain(const char* name, std::int32_t (*post)())
    {
        at = name;
        posted(post());
    }

    void posted(std::int32_t woken)
    {
        EXPECT_NE(woken, 0);
        ++progress;
        at = "between two posts";
    }

    std::mt19937 random_;
    std::array<std::uint8_t, SIDE * SIDE * 3> output_{};
};

class Storm : public LibraryTest {};

TEST_F(Storm, ReportsEveryCommandOnceAndLeavesNothingBehind)
{
    microscope::Settings settings;
    settings.width = settings.height = 64;
    settings.framesPerSecond = 2000;
    settings.motor.stepsPerSecond = 0;
    microscope::VirtualMicroscope microscope(settings);
    microscope.start([](const auto& frame) { tesmor_video(frame.pixels, frame.width, frame.height); });
    const ProcessFigures before = ProcessFigures::now();

    std::array<std::unique_ptr<Poster>, POSTERS> posters;
    std::atomic<const char*> keeperAt{"start"};
    std::atomic<int> postersLeft{POSTERS};
    std::atomic<bool> over{false};
    int starts = 0;

    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < POSTERS; ++i) {
        posters[i] = std::make_unique<Poster>(i);
        threads.emplace_back([&, i] {
            posters[i]->run(COMMANDS / POSTERS);
            --postersLeft;
        });
    }
    threads.emplace_back([&] { // starts and ends the worker again and again
        std::mt19937 random(seedOfThisRun());
        while (postersLeft > 0) {
            keeperAt = "tesmor_init";
            EXPECT_EQ(tesmor_init(), 1);
            ++starts;
            keeperAt = "running";
            const unsigned long until = progress + random() % 100;
            while (postersLeft > 0 && progress < until)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (postersLeft == 0)
                break;
            keeperAt = "tesmor_fini";
            EXPECT_NE(tesmor_fini(), 0);
            ++progress;
        }
        if (!hasWorker())
            tesmor_init();
        keeperAt = "last command";
        tesmor_reset();
        waitUntilIdle();
        keeperAt = "tesmor_fini";
        tesmor_fini();
        keeperAt = "done";
        over = true;
    });
    threads.emplace_back([&] {
        while (!over) {
            const std::int32_t doing = tesmor_doing();
            EXPECT_TRUE(doing == 0 || doing == 1);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });

    unsigned long seen = progress;
    auto lastProgress = std::chrono::steady_clock::now();
    while (!over) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        if (std::exchange(seen, progress.load()) != seen)
            lastProgress = std::chrono::steady_clock::now();
        if (std::chrono::steady_clock::now() - lastProgress < PATIENCE)
            continue;
        for (const auto& poster : posters)
            std::fprintf(stderr, "poster: %s\n", poster->at.load());
        std::fprintf(stderr, "keeper: %s; command %u, doing %d, runFlag %d, frameRequest %d; drive %s\n",
                     keeperAt.load(), static_cast<unsigned>(session.commandBlock.command), tesmor_doing(),
                     session.runFlag.load(), session.frameRequest.load(), microscope.isMoving() ? "moving" : "at rest");
        std::abort();
    }
    threads.clear();

    std::size_t commands = 0;
    std::size_t aborted = 0;
    for (const auto& poster : posters) {
        for (const Heard& heard : poster->heard) {
            EXPECT_TRUE(heard.isInOrder())
                << "kind " << static_cast<int>(heard.kind) << ": " << heard.results << " results, the last "
                << heard.result << ", " << heard.frames << " frames";
            ++commands;
            aborted += heard.result == TESMOR_ABORTED;
        }
    }
    EXPECT_TRUE(eventually([&] { return ProcessFigures::now().threads == before.threads; }));
    EXPECT_TRUE(eventually([&] { return ProcessFigures::now().descriptors == before.descriptors; }));
    const ProcessFigures after = ProcessFigures::now();
    std::printf("%zu commands reported once each, %zu of them aborted, %d starts; seed %u\n"
                "threads %ld, then %ld; descriptors %ld, then %ld; memory %ld kB, then %ld kB\n",
                commands, aborted, starts, seedOfThisRun(), before.threads, after.threads, before.descriptors,
                after.descriptors, before.residentKilobytes, after.residentKilobytes);
}

} // namespace

} // namespace tesmor::test
