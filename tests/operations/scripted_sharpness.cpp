#include "operations/scripted_sharpness.h"

#include "api/library.h"
#include "frames/frame_wait.h"
#include "support/scripted_device.h"

namespace tesmor {

std::int32_t waitForFrame()
{
    library.commandBlock.focusValue = test::sharpness(test::device.position());
    return test::waitResult(++test::waits);
}

} // namespace tesmor
