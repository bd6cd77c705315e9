// SPDX-License-Identifier: GPL-2.0-or-later
// The virtual microscope that a demo works with: its specimen and where it starts.
#pragma once

#include "microscope/virtual_microscope.h"
#include "terminal/live_line.h"
#include "tesmor/demo/demo_options.h"

#include <QImage>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace tesmor::apps {

class DemoInstrument {
public:
    // Reads the photographs, if any, and creates the microscope. Throws UserError.
    DemoInstrument(const DemoOptions& options, LiveLine::Style style);

    microscope::VirtualMicroscope& microscope()
    {
        return microscope_;
    }

    const microscope::VirtualMicroscope& microscope() const
    {
        return microscope_;
    }

    // 0 without photographs.
    std::size_t planeCount() const
    {
        return planeCount_;
    }

    std::int64_t startPosition() const // motor steps
    {
        return startPosition_;
    }

    // Motor steps: one depth of field; with photographs, from one to the next.
    double unitOfDistance() const;

    // Null with photographs.
    QImage truth() const;

    // Several lines that describe it and where it starts.
    QString introduction(const DemoOptions& options) const;

private:
    DemoInstrument(const DemoOptions& options, microscope::Settings settings);

    const std::size_t planeCount_;
    microscope::VirtualMicroscope microscope_;
    std::int64_t startPosition_;
};

} // namespace tesmor::apps
