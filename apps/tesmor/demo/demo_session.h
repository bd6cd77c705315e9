// The four operations of a session with a microscope, as any host of the library makes them: focus, move, capture a
// stack, merge it. Shows on the standard output what happens as it happens.
#pragma once

#include "host/library_session.h"
#include "microscope/virtual_microscope.h"
#include "terminal/live_line.h"
#include "tesmor/demo/focus_trace.h"
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
    std::size_t frames; // that the camera delivered meanwhile
    double seconds;
};

// Starts the microscope, passes its frames to the library, and stops it in the end. All functions throw UserError when
// the operation fails, and Interrupted; an interruption ends the library's command first.
class DemoSession {
public:
    // Returns with the first frame.
    DemoSession(microscope::VirtualMicroscope& microscope, LiveLine::Style style);
    ~DemoSession();
    DemoSession(const DemoSession&) = delete;
    DemoSession& operator=(const DemoSession&) = delete;

    FocusTrace focus();
    void moveTo(std::int64_t position); // motor steps
    std::vector<QImage> captureStack(std::uint16_t slices, std::int32_t spacing);
    // Ends the live view: the last operation.
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
