#include "support/library_test.h"

#include "drive/focus_drive.h"

namespace tesmor::test {

LibraryTest::LibraryTest()
{
    setUpLibrary(nullptr);
}

LibraryTest::~LibraryTest()
{
    if (library.workerHandle)
        tesmor_fini();
    library.manualDrive.reset();
}

void LibraryTest::waitUntilIdle()
{
    library.idleEvent.wait();
    library.idleEvent.set();
}

} // namespace tesmor::test
