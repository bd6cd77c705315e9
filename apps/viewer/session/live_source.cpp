// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/live_source.h"

#include <utility>

namespace tesmor::apps {

LiveSource::LiveSource()
    : tap_([this] { QMetaObject::invokeMethod(this, &LiveSource::frameWaits, Qt::QueuedConnection); })
{
}

LiveSource::~LiveSource()
{
    close();
}

void LiveSource::open(const Source& source, std::uint16_t magnification)
{
    close();
    source_ = source;
    tap_.setMagnification(magnification);
    const int number = number_;
    tell(number, State::OPENING, {});
    thread_.post([this, source, magnification, number] { openNow(source, magnification, number); });
}

void LiveSource::close()
{
    ++number_;
    microscope_.reset();
    controls_ = {};
    thread_.post([this] { camera_.reset(); });
    if (state_ != State::CLOSED)
        tell(number_, State::CLOSED, {});
}

void LiveSource::findSources(const SourceFinder& find)
{
    thread_.post([this, find] {
        QMetaObject::invokeMethod(
            this, [this, sources = find()] { emit sourcesFound(sources); }, Qt::QueuedConnection);
    });
}

void LiveSource::setControl(cameras::Control control, double value)
{
    thread_.post([this, control, value] {
        if (camera_)
            camera_->setControl(control, value);
    });
}

void LiveSource::refreshControls()
{
    thread_.post([this, number = number_] {
        if (camera_)
            readControls(number);
    });
}

void LiveSource::openNow(const Source& source, std::uint16_t magnification, int number)
{
    try {
        const Instrument instrument = source.make(magnification);
        camera_.emplace(instrument.makeDevice);
        camera_->start(
            [this](const cameras::Frame& frame) { tap_.receive(frame); },
            [this, number](cameras::CameraEvent event, const std::string& text) { hear(number, event, text); });
        QMetaObject::invokeMethod(
            this,
            [this, number, microscope = instrument.microscope] {
                if (number != number_)
                    return;
                microscope_ = microscope;
                if (state_ == State::OPENING)
                    tell(number, State::LIVE, {});
            },
            Qt::QueuedConnection);
        readControls(number);
    } catch (const std::exception& error) {
        camera_.reset();
        QMetaObject::invokeMethod(
            this, [this, number, text = QString(error.what())] { tell(number, State::LOST, text); },
            Qt::QueuedConnection);
    }
}

void LiveSource::readControls(int number)
{
    const CameraControls controls{camera_->control(cameras::Control::EXPOSURE),
                                  camera_->control(cameras::Control::GAIN)};
    QMetaObject::invokeMethod(
        this,
        [this, number, controls] {
            if (number != number_)
                return;
            controls_ = controls;
            emit controlsChanged();
        },
        Qt::QueuedConnection);
}

void LiveSource::tell(int number, State state, const QString& text)
{
    if (number != number_)
        return;
    state_ = state;
    emit stateChanged(state, text);
}

// On the camera's thread.
void LiveSource::hear(int number, cameras::CameraEvent event, const std::string& text)
{
    State state = State::LIVE;
    if (event == cameras::CameraEvent::LOST)
        state = State::LOST;
    else if (event == cameras::CameraEvent::STALLED)
        state = State::STALLED;
    QMetaObject::invokeMethod(
        this, [this, number, state, line = QString::fromStdString(text)] { tell(number, state, line); },
        Qt::QueuedConnection);
}

} // namespace tesmor::apps
