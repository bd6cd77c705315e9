// SPDX-License-Identifier: GPL-2.0-or-later
// Says what a motor would be sent, and turns nothing.
#pragma once

#include "drive/log.h"
#include "drive/motor.h"

#include <memory>

namespace tesmor::drive {

class DryRun : public Motor {
public:
    explicit DryRun(std::unique_ptr<Motor> motor) : motor_(std::move(motor)) {}

    std::string name() const override
    {
        return "a dry run, not " + motor_->name();
    }

    void connect() override {}

    void begin(std::int64_t steps) override
    {
        logLine("would send: " + motor_->describe(steps));
    }

    void finish() override {}

    std::string describe(std::int64_t steps) const override
    {
        return motor_->describe(steps);
    }

    std::int64_t largestMove() const override
    {
        return motor_->largestMove();
    }

private:
    const std::unique_ptr<Motor> motor_;
};

} // namespace tesmor::drive
