// SPDX-License-Identifier: GPL-2.0-or-later
// What a command's result means for the user, and what to do.
#pragma once

#include "host/drive_units.h"
#include "viewer/session/message_queue.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tesmor::apps {

enum class Operation { FOCUS, MOVE, STACK, FUSION };

// None for what needs no words.
std::optional<Message> textOf(Operation operation, std::int32_t result);

// For the status line; why it failed is textOf's to say.
QString textOfFailure(Operation operation);

// After TESMOR_MOVE_FAILED or TESMOR_NO_DRIVE, when all drives of the computer were looked up: says more where they
// tell more.
std::optional<Message> textOf(const std::vector<DriveUnit>& units);

} // namespace tesmor::apps
