// SPDX-License-Identifier: GPL-2.0-or-later
// The four operations of a session at the microscope, done as any host of the library does them: focus, move, capture a
// stack, merge it. Reports its progress on standard output.
#pragma once

#include "focusing/focus_trace.h"
#include "host/library_session.h"
#include "microscope/virtual_microscope.h"
#include "terminal/live_line.h"
#include "tesmor/demo/frame_watch.h"

#include <QImage>
#include <QString>

#include <cstdint>
#include <vector>

namespace tesmor::apps {

// What an operation cost.
struct OperationCost {
    QString name;
    std::size_t moves;
    std::size_t frames; // that the camera delivered
    double seconds;
};

// Starts the microscope, passes its frames to the library, and stops it at the end. All functions throw UserError when
// the operation fails, and Interrupted; an interruption ends the library's command first.
class DemoSession {
public:
    // Returns once the first frame has arrived.
    DemoSession(microscope::VirtualMicroscope& microscope, LiveLine::Style style);
    ~DemoSession();
    DemoSession(const DemoSession&) = delete;
    DemoSession& operator=(const DemoSession&) = delete;

    FocusTrace focus();
    void moveTo(std::int64_t position); // motor steps
    std::vector<QImage> captureStack(std::uint16_t slices, std::int32_t spacing);
    // The last operation: ends the live view.
    QImage merge(const std::vector<QImage>& slices);

    QImage firstImage() const
    {
        return watch_.firstImage();
    }

    const std::vector<OperationCost>& costs() const
    {
        return costs_;
    }

private:
    template <class Operation>
    auto measured(const QString& name, Operation operation);
    void moveBy(std::int64_t steps, LiveLine& line);
    std::size_t moveCount() const;
    QString viewText() const;

    microscope::VirtualMicroscope& microscope_;
    const LiveLine::Style style_;
    const std::uint16_t magnification_;
    FrameWatch watch_;
    LibrarySession library_;
    std::vector<OperationCost> costs_;
};

} // namespace tesmor::apps
