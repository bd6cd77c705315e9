// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/camera/outcome.h"

#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/text.h"
#include "tesmor.h"

namespace tesmor::apps {

QString failureText(std::int32_t result, const LiveCamera& camera)
{
    if (result == TESMOR_NO_DRIVE)
        return "no focus drive found; connect one and start its drive service, or try "
               "--camera virtual";
    if (result == TESMOR_MOVE_FAILED)
        return "the focus motor does not respond; check its cable, close other programs that use it, and try again";
    if (const auto reason = camera.whyLost())
        return camera.name() + ": " + *reason;
    return camera.name() + ": the camera is not sending images; check its cable and try again";
}

int tellOutcome(const CameraOptions& options, std::int32_t result, const QString& text, QJsonObject more)
{
    if (result == TESMOR_ABORTED)
        throw Interrupted();
    const bool succeeded = result == TESMOR_SUCCESS || result == TESMOR_STACK_DONE;
    if (options.json) {
        more["result"] = result;
        more["text"] = text;
        printJson(more);
    } else if (succeeded) {
        printLine(text);
    } else {
        throw UserError(text);
    }
    return succeeded ? STATUS_DONE : STATUS_FAILED;
}

} // namespace tesmor::apps
