// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/result_text.h"

#include "tesmor.h"

#include <QCoreApplication>

namespace tesmor::apps {

namespace {

// The words of the guide for those who build viewers, docs/integration.md.
class Words {
    Q_DECLARE_TR_FUNCTIONS(ResultText)

public:
    static Message cancelled(Operation operation)
    {
        const QString text =
            operation == Operation::FUSION ? tr("Cancelled.") : tr("Cancelled. The focus stays where it stopped.");
        return {Severity::INFORMATION, "command", text, {}, {}};
    }

    static QString failed(Operation operation)
    {
        switch (operation) {
        case Operation::FOCUS:
            return tr("The autofocus has failed.");
        case Operation::MOVE:
            return tr("The move has failed.");
        case Operation::STACK:
            return tr("The stack is not complete.");
        case Operation::FUSION:
            break;
        }
        return tr("The fusion has failed.");
    }

    static Message moveFailed()
    {
        return {Severity::ERROR,
                "drive",
                tr("The focus motor does not respond."),
                tr("Check the camera's cable, close other programs that use the motor, and try again."),
                {}};
    }

    static Message noDrive()
    {
        return {Severity::ERROR,
                "drive",
                tr("No focus motor was found."),
                tr("Connect a camera that has one, and check that its driver is running."),
                {}};
    }

    static Message noFrame()
    {
        return {Severity::ERROR,
                "camera",
                tr("The camera is not sending images."),
                tr("Start its live view and try again."),
                {}};
    }

    static Message noMemory()
    {
        return {Severity::ERROR,
                "memory",
                tr("There is not enough memory to merge images of this size."),
                tr("Close other programs, or choose a smaller size."),
                {}};
    }

    static Message busy()
    {
        return {Severity::ERROR,
                "drive",
                tr("Another program is using the focus motor."),
                tr("Close it, and try again."),
                {}};
    }

    static Message silent()
    {
        return {Severity::ERROR,
                "drive",
                tr("The service of the focus motor does not answer."),
                tr("Restart it, and try again."),
                {}};
    }

    static Message foreign()
    {
        return {Severity::ERROR,
                "drive",
                tr("The service of the focus motor runs as another user, whom this program does not trust."),
                tr("Run it as root or as yourself."),
                {}};
    }
};

} // namespace

std::optional<Message> textOf(Operation operation, std::int32_t result)
{
    switch (result) {
    case TESMOR_MOVE_FAILED:
        return Words::moveFailed();
    case TESMOR_NO_MEMORY:
        return Words::noMemory();
    case TESMOR_ABORTED:
        return Words::cancelled(operation);
    case TESMOR_NO_DRIVE:
        return Words::noDrive();
    case TESMOR_NO_FRAME:
        return Words::noFrame();
    default:
        return std::nullopt;
    }
}

QString textOfFailure(Operation operation)
{
    return Words::failed(operation);
}

// The library takes the lowest that is not foreign.
std::optional<Message> textOf(const std::vector<DriveUnit>& units)
{
    if (units.empty())
        return Words::noDrive();
    std::optional<Message> text;
    for (const DriveUnit& unit : units) {
        if (unit.state == DriveState::busy)
            return Words::busy();
        if (unit.state == DriveState::silent)
            return Words::silent();
        if (unit.state == DriveState::answers)
            return std::nullopt;
        text = Words::foreign();
    }
    return text;
}

} // namespace tesmor::apps
