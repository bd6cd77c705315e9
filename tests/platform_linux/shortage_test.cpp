// SPDX-License-Identifier: GPL-2.0-or-later
// What happens when memory runs out, each time in a process that has just started and keeps nothing in reserve.
#include "fusion/fuse_images.h"
#include "support/library_test.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tesmor::test {

namespace {

void spareAddressSpace(std::uint64_t bytes)
{
    malloc_trim(0);
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = std::min(limit.rlim_max, pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + bytes);
    setrlimit(RLIMIT_AS, &limit);
}

void takeAllMemory()
{
    static void* volatile taken; // so that the compiler must ask for it
    for (std::size_t size = 1 << 20; size > 0; size = size > 64 ? size / 2 : size - 8) {
        do {
            taken = std::malloc(size);
        } while (taken);
    }
}

class Shortage : public ScriptedLibraryTest {
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a sanitizer needs the address space";
#endif
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        mallopt(M_ARENA_MAX, 1); // no thread keeps memory of its own in reserve
    }

    // What `action` returns, 0 to 255.
    template <class Action>
    static int endOf(Action action)
    {
        int end = -1;
        const auto keepEnd = [&](int status) {
            end = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
            return true;
        };
        EXPECT_EXIT(_exit(action()), keepEnd, "");
        return end;
    }
};

constexpr std::uint8_t UNTOUCHED = 0xA5;

// A result code without its sign, or 1 if there was progress or output without success.
int fuseWith(std::uint64_t spareBytes, std::uint32_t width, std::uint32_t height)
{
    const std::vector<std::uint8_t> image(std::size_t{(width * 3 + 3) / 4 * 4} * height, 90);
    std::vector<std::uint8_t> output(image.size(), UNTOUCHED);
    const std::uint8_t* const images[] = {image.data(), image.data()};
    const std::atomic<std::int32_t> runFlag{1};
    bool begun = false;
    spareAddressSpace(spareBytes);
    const std::int32_t result =
        fuseImages(images, 2, width, height, output.data(), runFlag, [&](std::int32_t) { begun = true; });
    begun = begun || std::ranges::count(output, UNTOUCHED) != std::ssize(output);
    return result != TESMOR_SUCCESS && begun ? 1 : -result;
}

// FFTW ends the process when an allocation of its own fails. So the library looks first whether there is memory to
// spare, and a real shortage is a result. But it asks for no more than tesmor.h says. Sides that are prime need most.
TEST_F(Shortage, AtAnyPointOfAFusionIsAResultBeforeItHasBegun)
{
    for (const auto& [width, height] : {std::pair{16u, 12u}, {257u, 263u}, {640u, 480u}, {104u, 2053u}}) {
        const std::uint64_t enough = std::uint64_t{34} * width * height + 4'000'000;
        int refused = 0;
        for (std::uint64_t tenths = 0; tenths <= 10; ++tenths) {
            const std::uint64_t spare = enough * tenths / 10;
            const int end = endOf([&, w = width, h = height] { return fuseWith(spare, w, h); });
            refused += end == -TESMOR_NO_MEMORY;
            EXPECT_TRUE(end == -TESMOR_NO_MEMORY || end == TESMOR_SUCCESS) << width << " x " << height << ": " << spare;
            EXPECT_TRUE(spare < enough || end == TESMOR_SUCCESS) << width << " x " << height;
        }
        EXPECT_GT(refused, 0) << width << " x " << height;
    }
}

TEST_F(Shortage, OfTheStartIsReportedAndItCanBeTriedAgain)
{
    const int end = endOf([] {
        spareAddressSpace(1'000'000); // a thread's stack is 8 MB
        const bool started = tesmor_init() != 0;
        spareAddressSpace(100'000'000);
        return started ? 1 : tesmor_init() == 1 && tesmor_fini() != 0 ? 0 : 2;
    });
    EXPECT_EQ(end, 0);
}

TEST_F(Shortage, LeavesAMoveWithoutADrive)
{
    system.reset({0});
    const int end = endOf([] {
        std::int32_t result = TESMOR_SUCCESS;
        tesmor_init();
        spareAddressSpace(0);
        takeAllMemory();
        tesmor_manual(
            1.0, [](void* context, std::int32_t code) { *static_cast<std::int32_t*>(context) = code; }, &result);
        tesmor_fini(); // waits for the move
        return -result;
    });
    EXPECT_EQ(end, -TESMOR_NO_DRIVE);
}

} // namespace

} // namespace tesmor::test
