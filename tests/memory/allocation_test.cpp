// What happens when memory runs out, one allocation after the other.
#include "drive/focus_drive.h"
#include "fusion/fuse_images.h"
#include "memory/failing_memory.h"
#include "operations/manual_move.h"
#include "platform_linux/raw_service.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/child_process.h"
#include "support/library_test.h"

#include <fftw3.h>
#include <fstream>
#include <malloc.h>
#include <sys/resource.h>

namespace tesmor::test {

namespace {

constexpr std::uint8_t UNTOUCHED = 0xA5;

class Allocations : public LibraryTest {
protected:
    Allocations()
    {
        library.runFlag = 1;
        mallopt(M_ARENA_MAX, 1); // no thread keeps memory of its own in reserve
    }

    void prepare(std::uint32_t imageSide)
    {
        side = imageSide;
        image.assign(std::size_t{side} * side * 3, 90);
        output.assign(image.size(), UNTOUCHED);
    }

    // Of the same image twice; plans anew every time.
    std::int32_t fuse()
    {
        const std::uint8_t* const images[] = {image.data(), image.data()};
        fftw_cleanup();
        return fuseImages(images, 2, side, side, output.data(), runFlag, [this](std::int32_t) { ++callCount; });
    }

    const std::atomic<std::int32_t> runFlag{1};

    std::uint32_t side = 0;
    std::vector<std::uint8_t> image;
    std::vector<std::uint8_t> output;
    int callCount = 0;
};

TEST_F(Allocations, EachOfAFusionThatFailsEndsItBeforeItHasBegun)
{
    prepare(12);
    long failing = 1;
    for (;; ++failing) {
        FailingMemory memory(failing);
        const std::int32_t result = fuse();
        if (!memory.hasFailed()) {
            EXPECT_EQ(result, SUCCESS);
            break;
        }
        EXPECT_EQ(result, NO_MEMORY) << "allocation " << failing;
        EXPECT_EQ(callCount, 0) << "allocation " << failing;
        EXPECT_EQ(output, std::vector<std::uint8_t>(output.size(), UNTOUCHED)) << "allocation " << failing;
    }
    std::printf("%ld allocations\n", failing - 1);
    EXPECT_GT(failing, 12) << "the fusion's buffers and the engine's arrays";
}

// A drive service that accepts everything at once, for one client.
class WillingService {
public:
    explicit WillingService(unsigned unit)
        : service_(unit), thread_([this] {
              service_.acceptClient();
              for (auto packet = service_.receive(); packet && packet->size() > 4; packet = service_.receive()) {
                  service_.send({(*packet)[0], (*packet)[1], (*packet)[2], (*packet)[3], 1});
                  service_.send({0});
              }
              service_.vanish();
          })
    {
    }

private:
    RawService service_;
    std::jthread thread_;
};

TEST_F(Allocations, EachOfAMoveThatFailsFailsTheMove)
{
    CallRecorder recorder;
    const std::int32_t results[] = {NO_DRIVE, NO_DRIVE, MOVE_FAILED, SUCCESS};
    for (long failing = 1; failing <= 4; ++failing) {
        WillingService service(0);
        if (failing == 1) // never connects: let the service go
            platform::closeDevice(platform::openDevice(0));
        {
            FailingMemory memory(failing);
            manualMove(1.0, CallRecorder::onDone, &recorder);
            EXPECT_EQ(memory.hasFailed(), failing < 4);
        }
        library.manualDrive.reset();
        EXPECT_EQ(recorder.calls().back(), report(results[failing - 1])) << "allocation " << failing;
    }
}

TEST_F(Allocations, EachOfTheStartThatFailsIsReportedAndCanBeTriedAgain)
{
    for (long failing = 1; failing <= 2; ++failing) {
        FailingMemory memory(failing);
        EXPECT_EQ(tesmor_init(), 0) << "allocation " << failing;
    }
    EXPECT_EQ(tesmor_init(), 1);
    EXPECT_NE(tesmor_fini(), 0);
}

std::uint64_t addressSpaceInUse()
{
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

// FFTW ends the process when an allocation of its own fails. So the library looks first whether there is memory to spare, and a real shortage is a result.
TEST_F(Allocations, AShortageAtAnyPointOfAFusionIsAResult)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer needs the address space";
#endif
    prepare(256);
    int refused = 0;
    int fused = 0;
    for (std::uint64_t spare : {0, 2, 3, 4, 5, 6, 7, 8, 10, 12, 16, 20, 24, 28, 32, 36, 40, 80, 160}) {
        const int end = endOfChild([&] {
            malloc_trim(0);
            const rlimit limit{addressSpaceInUse() + spare * 500'000, RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &limit);
            return -fuse();
        });
        refused += end == -NO_MEMORY;
        fused += end == SUCCESS;
        EXPECT_TRUE(end == SUCCESS || end == -NO_MEMORY) << spare << " half MB: " << end;
    }
    EXPECT_GT(refused, 0);
    EXPECT_GT(fused, 0);
}

} // namespace

} // namespace tesmor::test
