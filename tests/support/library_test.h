// SPDX-License-Identifier: GPL-2.0-or-later
// A library as freshly loaded for every test, its worker ended after it.
#pragma once

#include "api/library.h"
#include "support/scripted_system.h"
#include "tesmor.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace tesmor::test {

// On the drive units and the clock of this computer, or on others.
class LibraryTest : public ::testing::Test {
protected:
    explicit LibraryTest(platform::DriveUnits& units = platform::systemDriveUnits(),
                         platform::Clock& clock = platform::systemClock())
        : library_(setUpLibrary(nullptr, units, clock)), session(library_.session)
    {
    }

    ~LibraryTest() override
    {
        if (hasWorker())
            tesmor_fini();
    }

    bool hasWorker() const
    {
        return library_.workerHandle != nullptr;
    }

    // Posts nothing and waits until the worker has run everything that was posted.
    void waitUntilIdle()
    {
        session.idleEvent.wait();
        session.idleEvent.set();
    }

private:
    Library& library_;

protected:
    Session& session;
};

struct HasScriptedSystem {
    ScriptedSystem system;
};

class ScriptedLibraryTest : protected HasScriptedSystem, public LibraryTest {
protected:
    ScriptedLibraryTest() : LibraryTest(system, system) {}
};

// Whether `condition` came true within ten seconds.
template <class Condition>
bool eventually(Condition condition)
{
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(200us);
    }
    return true;
}

} // namespace tesmor::test
