// SPDX-License-Identifier: GPL-2.0-or-later
// The source of the live image: a camera of this computer, or the virtual microscope. Opening and closing take seconds,
// so they happen on a thread of their own; what comes of them arrives as signals on the thread of this object. A source
// that was lost is opened again by open.
#pragma once

#include "cameras/camera.h"
#include "viewer/session/command_thread.h"
#include "viewer/session/frame_tap.h"
#include "viewer/session/source.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace tesmor::apps {

struct CameraControls {
    std::optional<cameras::ControlState> exposure; // seconds
    std::optional<cameras::ControlState> gain;
};

class LiveSource : public QObject {
    Q_OBJECT

public:
    enum class State { CLOSED, OPENING, LIVE, STALLED, LOST };
    Q_ENUM(State)

    LiveSource();

    // Closes and waits for it, half a second at most.
    ~LiveSource() override;

    // Closes the present source and opens this one.
    //   magnification   of the virtual microscope's objective
    void open(const Source& source, std::uint16_t magnification);
    void close();

    // Looks for sources; `sourcesFound` follows within a few seconds.
    void findSources(const SourceFinder& find);

    // Takes effect within a tenth of a second or the time of a frame.
    void setControl(cameras::Control control, double value);

    // Asks the camera for what it tells of its controls now; `controlsChanged` follows.
    void refreshControls();

    State state() const
    {
        return state_;
    }

    const Source& source() const // the last that was to be opened
    {
        return source_;
    }

    // The one that was opened; null for a real camera, and until it is open.
    const std::shared_ptr<microscope::VirtualMicroscope>& microscope() const
    {
        return microscope_;
    }

    const CameraControls& controls() const
    {
        return controls_;
    }

    FrameTap& tap()
    {
        return tap_;
    }

signals:
    void sourcesFound(const std::vector<tesmor::apps::Source>& sources);
    void stateChanged(tesmor::apps::LiveSource::State state, const QString& text); // one line for people; may be empty
    void controlsChanged();
    void frameWaits();

private:
    void openNow(const Source& source, std::uint16_t magnification, int number);
    void readControls(int number);
    void tell(int number, State state, const QString& text);
    void hear(int number, cameras::CameraEvent event, const std::string& text);

    Source source_;
    State state_ = State::CLOSED;
    int number_ = 0; // of the last opening; what comes late from an earlier one is not for us
    std::shared_ptr<microscope::VirtualMicroscope> microscope_;
    CameraControls controls_;
    FrameTap tap_;
    std::optional<cameras::Camera> camera_; // of the thread
    CommandThread thread_;                  // the first to go
};

} // namespace tesmor::apps
