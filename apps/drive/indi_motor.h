// SPDX-License-Identifier: GPL-2.0-or-later
// A focuser that an INDI server has: some fifty makes. Forward is outward.
#pragma once

#include "drive/motor.h"

#include <memory>

namespace tesmor::drive {

struct IndiSettings {
    std::string device;
    std::string host = "localhost";
    unsigned port = 7624;
};

class IndiClient;

class IndiMotor : public Motor {
public:
    explicit IndiMotor(IndiSettings settings);
    ~IndiMotor() override;

    std::string name() const override;
    void connect() override;
    void begin(std::int64_t steps) override;
    void finish() override;
    std::string describe(std::int64_t steps) const override;
    std::int64_t largestMove() const override;

private:
    [[noreturn]] void lose(const std::string& what) const;

    const IndiSettings settings_;
    std::unique_ptr<IndiClient> client_;

    // Of the move in hand:
    unsigned long newsBefore_ = 0; // of the relative position
    double target_ = 0;
    bool turns_ = false;
};

} // namespace tesmor::drive
