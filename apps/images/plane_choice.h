// SPDX-License-Identifier: GPL-2.0-or-later
// Which channel and time of a stack the user wants.
#pragma once

#include "images/stack_description.h"

#include <optional>

namespace tesmor::apps {

// From 1, as on the command line; nothing: the only one.
struct PlaneChoice {
    std::optional<int> channel;
    std::optional<int> time;
};

// The planes of that channel and time, by slice. Throws UserError, which names the file, what it has and how to choose,
// if there are several or the one is not among them.
std::vector<Plane> choosePlanes(const QString& file, const StackDescription& stack, const PlaneChoice& choice);

} // namespace tesmor::apps
