// SPDX-License-Identifier: GPL-2.0-or-later
// A motor on a Sangaboard, the motor board of open laboratory microscopes. It says "done." when a move has ended.
#pragma once

#include "drive/motor.h"
#include "drive/serial_port.h"

#include <memory>

namespace tesmor::drive {

struct SangaboardSettings {
    std::string port;
    unsigned baud = 115200;
    char axis = 'z';
};

class SangaboardMotor : public Motor {
public:
    explicit SangaboardMotor(SangaboardSettings settings);

    std::string name() const override;
    void connect() override;
    void begin(std::int64_t steps) override;
    void finish() override;
    std::string describe(std::int64_t steps) const override;
    std::int64_t largestMove() const override;

private:
    [[noreturn]] void lose(const std::string& what) const;

    const SangaboardSettings settings_;
    std::unique_ptr<SerialPort> port_;
    std::int64_t turn_ = 0; // the move in hand
};

} // namespace tesmor::drive
