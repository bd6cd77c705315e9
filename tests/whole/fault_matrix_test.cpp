// SPDX-License-Identifier: GPL-2.0-or-later
// Every operation with every fault in every phase: one result and one only, the drive closed, no longer a wait than
// stated, and a library that runs the next command.
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <algorithm>
#include <future>
#include <optional>
#include <ostream>

namespace tesmor::test {

namespace {

constexpr std::uint32_t SIDE = 16; // pixels of a frame
constexpr std::size_t FRAME_BYTES = SIDE * SIDE * 3;
constexpr int ALL_ATTEMPTS = 5;

struct Host {
    CallRecorder calls;
    std::vector<std::uint8_t> image = std::vector<std::uint8_t>(FRAME_BYTES, 100);
    std::vector<std::uint8_t> output = std::vector<std::uint8_t>(FRAME_BYTES);
};

struct Operation {
    const char* name;
    void (*post)(Host&);
    std::size_t moves;              // of an undisturbed run
    std::vector<std::size_t> waits; // for a frame: how many moves are made before each
    std::size_t frames;             // the first callbacks that come on the video thread,
    std::size_t reports;            // those that follow on the worker; the last one carries the result
    std::int32_t success;

    std::size_t callbacks() const
    {
        return frames + reports;
    }
};

const Operation MANUAL{"manual move", [](Host& h) { tesmor_manual(90, CallRecorder::onDone, &h.calls); }, 1, {}, 0, 1,
                       TESMOR_SUCCESS};
// The frames are all the same; see the search's own tests for the moves that follow.
const Operation SEARCH{"autofocus",
                       [](Host& h) { tesmor_start(40, CallRecorder::onDone, &h.calls); },
                       26,
                       {3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24},
                       0,
                       1,
                       TESMOR_SUCCESS};
const Operation STACK{
    "stack",          [](Host& h) { tesmor_startif(10, 3, 1, CallRecorder::onFrame, &h.calls, 0); }, 6, {1, 2, 3}, 3, 1,
    TESMOR_STACK_DONE};
const Operation NOTICES{
    "stack of notices", [](Host& h) { tesmor_startif(10, 3, 1, CallRecorder::onFrame, &h.calls, 1); }, 6, {}, 0, 4,
    TESMOR_STACK_DONE};
const Operation CAPTURE{"capture",     [](Host& h) { tesmor_capture(CallRecorder::onFrame, &h.calls); }, 0, {0}, 1, 0,
                        TESMOR_SUCCESS};
const Operation FUSION{"fusion",
                       [](Host& h) {
                           const std::uint8_t* const images[] = {h.image.data(), h.image.data()};
                           tesmor_fusion(images, 2, SIDE, SIDE, h.output.data(), CallRecorder::onFrame, &h.calls);
                       },
                       0,
                       {},
                       0,
                       9,
                       TESMOR_SUCCESS};

using Export = std::int32_t (*)();

struct Cell {
    const Operation* operation;
    const char* fault;
    std::size_t at; // move, wait or callback, counted from 0

    // The fault.
    int refusals = 0;
    int missingAcks = 0;
    bool noDrive = false;
    bool openRefused = false;
    std::optional<std::size_t> framesUntilTheyStop{};
    bool abortInMove = false;
    bool abortInWait = false;
    bool abortInCallback = false;
    bool throwInCallback = false;
    bool longCallback = false;
    Export abort = nullptr;

    // What follows.
    std::optional<std::int32_t> result{}; // none: the host hears nothing
    std::size_t moves = 0;
    std::uint64_t waited = 0; // for the drive, milliseconds
};

std::ostream& operator<<(std::ostream& out, const Cell& cell)
{
    return out << cell.operation->name << ", " << cell.fault << " at " << cell.at << ", " << cell.refusals << "/"
               << cell.missingAcks;
}

class Matrix {
public:
    Matrix()
    {
        for (const Operation* operation : {&MANUAL, &SEARCH, &STACK, &NOTICES}) {
            for (std::size_t move = 0; move < operation->moves; ++move)
                addMoveFaults({operation, "", move});
            cells.push_back(
                {.operation = operation, .fault = "no drive", .at = 0, .noDrive = true, .result = TESMOR_NO_DRIVE});
            Cell refused{operation, "opening refused", 0};
            refused.openRefused = true;
            refused.result = operation->success;
            refused.moves = operation->moves;
            cells.push_back(refused);
        }
        for (const Operation* operation : {&SEARCH, &STACK, &CAPTURE}) {
            for (std::size_t wait = 0; wait < operation->waits.size(); ++wait)
                addWaitFaults({operation, "", wait});
        }
        for (const Operation* operation : {&MANUAL, &SEARCH, &STACK, &NOTICES, &CAPTURE, &FUSION}) {
            for (std::size_t call = 0; call < operation->callbacks(); ++call)
                addCallbackFaults({operation, "", call});
        }
    }

    std::vector<Cell> cells;

private:
    static constexpr Export aborts[] = {tesmor_stop, tesmor_cancelif, tesmor_fini};

    void addMoveFaults(Cell cell)
    {
        const Operation& operation = *cell.operation;
        const auto failsAt = [&](int attempts, std::size_t moves) {
            cell.result = attempts < ALL_ATTEMPTS ? operation.success : TESMOR_MOVE_FAILED;
            cell.moves = attempts < ALL_ATTEMPTS ? operation.moves : moves;
            cells.push_back(cell);
        };
        for (int n = 1; n <= ALL_ATTEMPTS; ++n) {
            cell.fault = "move refused";
            cell.refusals = n;
            cell.waited = 20 * static_cast<std::uint64_t>(n);
            failsAt(n, cell.at);
        }
        for (int n = 1; n <= ALL_ATTEMPTS; ++n) {
            cell.fault = n < ALL_ATTEMPTS ? "acknowledgement late" : "acknowledgement missing";
            cell.refusals = 0;
            cell.missingAcks = n;
            cell.waited = 1520 * static_cast<std::uint64_t>(n);
            failsAt(n, cell.at + 1);
        }
        cell.missingAcks = 0;
        cell.waited = 0;
        cell.fault = "abort in a move";
        cell.abortInMove = true;
        const auto seenAt = std::ranges::find_if(operation.waits, [&](std::size_t moves) { return moves > cell.at; });
        cell.result = seenAt == operation.waits.end() ? operation.success : TESMOR_ABORTED;
        cell.moves = seenAt == operation.waits.end() ? operation.moves : *seenAt;
        addForEveryAbort(cell);
    }

    void addWaitFaults(Cell cell)
    {
        const bool isSilent = cell.operation->reports == 0;
        cell.moves = cell.operation->waits[cell.at];
        cell.framesUntilTheyStop = cell.at;
        cell.fault = cell.at == 0 ? "no frames" : "frames stop";
        if (!isSilent)
            cell.result = TESMOR_NO_FRAME;
        cells.push_back(cell);
        cell.fault = "abort in a wait";
        cell.abortInWait = true;
        if (!isSilent)
            cell.result = TESMOR_ABORTED;
        addForEveryAbort(cell);
    }

    void addCallbackFaults(Cell cell)
    {
        const Operation& operation = *cell.operation;
        const bool isFrame = cell.at < operation.frames;
        const bool isLast = cell.at + 1 == operation.callbacks();
        const auto withResult = [&](std::optional<std::int32_t> result) {
            cell.result = operation.reports == 0 ? std::nullopt : result;
            const bool completes = cell.result == operation.success || operation.moves == 0;
            cell.moves = completes || isLast ? operation.moves : cell.at + 1;
            return cell;
        };
        cell.fault = "callback takes long";
        cell.longCallback = true;
        cells.push_back(withResult(isFrame ? TESMOR_NO_FRAME : operation.success));
        cell.fault = "callback throws";
        cell.longCallback = false;
        cell.throwInCallback = true;
        if (isLast)
            cells.push_back(withResult(operation.success));
        else
            cells.push_back(withResult(isFrame ? std::optional(TESMOR_NO_FRAME) : std::nullopt));
        cell.fault = "abort in a callback";
        cell.throwInCallback = false;
        cell.abortInCallback = true;
        const bool isSeen = isFrame || (&operation == &FUSION && cell.at < 6); // not once the last image is in
        addForEveryAbort(withResult(isSeen ? TESMOR_ABORTED : operation.success));
    }

    void addForEveryAbort(Cell cell)
    {
        for (const Export abort : aborts) {
            cell.abort = abort;
            cells.push_back(cell);
        }
    }
};

// Feeds frames as they are asked for, as many as the cell allows.
class Camera {
public:
    Camera(const Session& session, const Host& host, std::optional<std::size_t> frames)
        : left_(frames.value_or(SIZE_MAX)), thread_([&session, &host, this] {
              while (!stop_) {
                  if (session.frameRequest == 1 && left_ > 0) {
                      --left_;
                      try {
                          tesmor_video(host.image.data(), SIDE, SIDE);
                      } catch (int) { // the host's own callback threw
                      }
                  }
                  std::this_thread::sleep_for(std::chrono::microseconds(50));
              }
          })
    {
    }

    ~Camera()
    {
        stop_ = true;
        thread_.join();
    }

    bool hasStopped() const
    {
        return left_ == 0;
    }

private:
    std::atomic<std::size_t> left_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

class FaultMatrix : public ScriptedLibraryTest {
protected:
    void SetUp() override
    {
        ASSERT_EQ(tesmor_init(), 1);
    }

    void run(const Cell& cell)
    {
        Host host;
        prepareDevice(cell);
        std::future<std::int32_t> abort;
        // From another thread, as an abort must be; returns once the command was told.
        const auto startAbort = [&] {
            abort = std::async(std::launch::async, cell.abort);
            eventually([this] { return session.runFlag == 0; });
        };
        if (cell.abortInMove) {
            system.inMove = [&] {
                if (system.moves().size() == cell.at + 1)
                    startAbort();
            };
        }
        host.calls.then = [&](const Call&) {
            if (host.calls.calls().size() == cell.at + 1)
                misbehave(cell, startAbort);
        };
        {
            const Camera camera(session, host, cell.framesUntilTheyStop);
            cell.operation->post(host);
            if (cell.framesUntilTheyStop) {
                EXPECT_TRUE(eventually([&] {
                    return camera.hasStopped() && session.frameRequest == 1 && system.moves().size() == cell.moves;
                }));
                if (cell.abortInWait)
                    startAbort();
                else
                    system.timePasses = true;
            }
            waitUntilIdle();
        }
        system.timePasses = false;
        if (abort.valid()) {
            EXPECT_NE(abort.get(), 0);
        }
        expectOutcome(cell, host);
        if (cell.abort == tesmor_fini)
            tesmor_init();
        expectReadyForTheNextCommand();
    }

private:
    void prepareDevice(const Cell& cell)
    {
        system.reset({0});
        if (cell.noDrive)
            system.openingUnits.clear();
        system.refuseOpenRequest = cell.openRefused;
        system.goodMoves = cell.refusals + cell.missingAcks > 0 ? cell.at : ScriptedSystem::NEVER;
        system.refusals = cell.refusals;
        system.missingAcks = cell.missingAcks;
    }

    template <class StartAbort>
    void misbehave(const Cell& cell, StartAbort startAbort)
    {
        if (cell.abortInCallback)
            startAbort();
        if (cell.longCallback || cell.throwInCallback)
            system.timePasses = true;
        if (cell.longCallback && cell.at < cell.operation->frames)
            eventually([this] { return session.runFlag == 0; }); // the wait gives up
        if (cell.throwInCallback)
            throw 1;
    }

    void expectOutcome(const Cell& cell, const Host& host)
    {
        const bool isFusion = cell.operation == &FUSION;
        std::vector<std::int32_t> results;
        for (const Call& call : host.calls.calls()) {
            const bool isNotice = !call.image && call.result == TESMOR_SUCCESS && cell.operation == &NOTICES;
            if ((call.image != nullptr) == isFusion && !isNotice)
                results.push_back(call.result);
        }
        EXPECT_EQ(results, cell.result ? std::vector{*cell.result} : std::vector<std::int32_t>{});
        EXPECT_EQ(system.moves().size(), cell.moves);
        EXPECT_EQ(system.waitedForDevice(), cell.waited);
        EXPECT_EQ(system.isOpen(), cell.operation == &MANUAL && !cell.noDrive && cell.abort != tesmor_fini);
    }

    void expectReadyForTheNextCommand()
    {
        system.reset({0});
        EXPECT_EQ(tesmor_doing(), 0);
        EXPECT_EQ(session.frameRequest, 0);
        Host next;
        MANUAL.post(next);
        tesmor_reset();
        waitUntilIdle();
        EXPECT_EQ(next.calls.calls(), std::vector{report(TESMOR_SUCCESS)});
        EXPECT_FALSE(system.isOpen());
    }
};

TEST_F(FaultMatrix, EveryFaultInEveryPhaseOfEveryOperation)
{
    const Matrix matrix;
    for (const Cell& cell : matrix.cells) {
        SCOPED_TRACE(::testing::PrintToString(cell));
        run(cell);
        if (HasFailure())
            break;
    }
    RecordProperty("cells", static_cast<int>(matrix.cells.size()));
    std::printf("%zu cells\n", matrix.cells.size());
}

} // namespace

} // namespace tesmor::test
