// A library as freshly loaded for every test, its worker ended after it.
#pragma once

#include "api/library.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace tesmor::test {

class LibraryTest : public ::testing::Test {
protected:
    LibraryTest();
    ~LibraryTest() override;

    // Posts nothing and waits until the worker has run everything that was posted.
    static void waitUntilIdle();
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
