// Threads that post, abort, ask, feed frames and re-initialise as they please, on the virtual microscope.
// For longer and other storms: --gtest_repeat=N --gtest_shuffle --gtest_random_seed=S.
// What a host must not do is left out: no post comes from a callback, and tesmor_init and tesmor_fini come from one
// thread in turn. A post that finds the worker gone waits for the next tesmor_init, so the last one follows all posts.
#include "api/result_codes.h"
#include "microscope/virtual_microscope.h"
#include "support/library_test.h"
#include "support/process_figures.h"

#include <array>
#include <deque>
#include <random>
#include <set>

namespace tesmor::test {

namespace {

constexpr unsigned long COMMANDS = 1200;

constexpr std::size_t POSTERS = 4;
constexpr std::uint32_t SIDE = 16; // pixels of a fused image
constexpr std::uint16_t SLICES = 3;

std::atomic<unsigned long> progress{0}; // posts and callbacks

enum class Kind { stop, cancel, reset, manual, autofocus, stack, notices, capture, fusion };

// What the host heard of one command; it outlives the storm, as a late frame may still come.
struct Heard {
    Kind kind;
    std::atomic<int> frames{0};
    std::atomic<int> results{0};
    std::atomic<std::int32_t> result{0};

    explicit Heard(Kind kindOfCommand) : kind(kindOfCommand) {}

    static void onDone(void* context, std::int32_t result)
    {
        ++progress;
        end(*static_cast<Heard*>(context), result);
    }

    static void onFrame(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        ++progress;
        auto& heard = *static_cast<Heard*>(context);
        if (heard.kind == Kind::fusion ? image != nullptr : !image && result != SUCCESS)
            end(heard, result);
        else if (heard.kind != Kind::fusion)
            ++heard.frames;
    }

    static void end(Heard& heard, std::int32_t code)
    {
        heard.result = code;
        ++heard.results;
    }

    bool isInOrder() const
    {
        const std::set<std::int32_t> possible = kind == Kind::fusion
                                                    ? std::set{SUCCESS, ABORTED}
                                                    : std::set{SUCCESS, STACK_DONE, MOVE_FAILED, ABORTED, NO_FRAME};
        if (kind == Kind::capture)
            return results == 0 && frames <= 1;
        if (kind == Kind::notices)
            return results == 1 && frames == SLICES && result == STACK_DONE;
        return results == 1 && frames <= (kind == Kind::stack ? SLICES : 0) && possible.contains(result);
    }
};

// One of the threads of the storm.
class Poster {
public:
    explicit Poster(unsigned seed) : random_(seed) {}

    void run(unsigned long commands)
    {
        for (unsigned long i = 0; i < commands; ++i)
            postAny();
    }

    std::deque<Heard> heard;

private:
    void postAny()
    {
        static constexpr std::array<std::uint8_t, SIDE * SIDE * 3> image{};
        static constexpr const std::uint8_t* images[] = {image.data(), image.data()};
        const auto kind = static_cast<Kind>(random_() % 9);
        const auto add = [&] { return &heard.emplace_back(kind); };
        const auto post = [&] {
            switch (kind) {
            case Kind::stop:
                return tesmor_stop();
            case Kind::cancel:
                return tesmor_cancelif();
            case Kind::reset:
                return tesmor_reset();
            case Kind::manual:
                return tesmor_manual(static_cast<double>(random_() % 40) - 20, Heard::onDone, add());
            case Kind::autofocus:
                return tesmor_start(40, Heard::onDone, add());
            case Kind::stack:
                return tesmor_startif(20, SLICES, 1, Heard::onFrame, add(), 0);
            case Kind::notices:
                return tesmor_startif(20, SLICES, -1, Heard::onFrame, add(), 1);
            case Kind::capture:
                return tesmor_capture(Heard::onFrame, add());
            default:
                return tesmor_fusion(images, 2, SIDE, SIDE, output_.data(), Heard::onFrame, add());
            }
        };
        EXPECT_NE(post(), 0);
        ++progress;
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
    const unsigned seed = static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed());
    const ProcessFigures before = ProcessFigures::now();

    std::array<std::unique_ptr<Poster>, POSTERS> posters;
    std::atomic<int> postersLeft{POSTERS};
    int starts = 0;

    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < POSTERS; ++i) {
        posters[i] = std::make_unique<Poster>(seed * 1000 + static_cast<unsigned>(i));
        threads.emplace_back([&, i] {
            posters[i]->run(COMMANDS / POSTERS);
            --postersLeft;
        });
    }
    threads.emplace_back([&] { // starts and ends the worker again and again
        std::mt19937 random(seed);
        while (postersLeft > 0) {
            EXPECT_EQ(tesmor_init(), 1);
            ++starts;
            const unsigned long until = progress + random() % 100;
            while (postersLeft > 0 && progress < until)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (postersLeft == 0)
                break;
            EXPECT_NE(tesmor_fini(), 0);
            ++progress;
        }
        if (!library.workerHandle)
            tesmor_init();
        tesmor_reset();
        waitUntilIdle();
        tesmor_fini();
    });
    threads.emplace_back([&] {
        for (; postersLeft > 0; std::this_thread::sleep_for(std::chrono::microseconds(100)))
            EXPECT_EQ(tesmor_doing() & ~1, 0);
    });
    threads.clear(); // what hangs, hangs here

    std::size_t commands = 0;
    std::size_t aborted = 0;
    for (const auto& poster : posters) {
        for (const Heard& heard : poster->heard) {
            EXPECT_TRUE(heard.isInOrder())
                << "kind " << static_cast<int>(heard.kind) << ": " << heard.results << " results, the last "
                << heard.result << ", " << heard.frames << " frames";
            ++commands;
            aborted += heard.result == ABORTED;
        }
    }
    EXPECT_TRUE(eventually([&] { return ProcessFigures::now().threads == before.threads; }));
    EXPECT_TRUE(eventually([&] { return ProcessFigures::now().descriptors == before.descriptors; }));
    const ProcessFigures after = ProcessFigures::now();
    std::printf("%zu commands reported once each, %zu of them aborted, %d starts; seed %u\n"
                "threads %ld, then %ld; descriptors %ld, then %ld; memory %ld kB, then %ld kB\n",
                commands, aborted, starts, seed, before.threads, after.threads, before.descriptors, after.descriptors,
                before.residentKilobytes, after.residentKilobytes);
}

} // namespace

} // namespace tesmor::test
