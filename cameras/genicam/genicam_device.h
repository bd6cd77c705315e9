// SPDX-License-Identifier: GPL-2.0-or-later
// The frames of one camera, through Aravis.
#pragma once

#include "cameras/device.h"
#include "cameras/genicam/pixel_format.h"

#include <arv.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace tesmor::cameras {

class GenicamDevice : public Device {
public:
    //   id   what Aravis calls the camera, or its network address
    // Lets the camera run free, in a format of 8 bits that can be converted. Throws CameraError.
    explicit GenicamDevice(const std::string& id);
    ~GenicamDevice() override;

    void start() override;
    bool next(std::chrono::milliseconds limit, const FrameSink& sink) override;
    void stop() noexcept override;
    std::optional<ControlState> control(Control control) const override;
    void setControl(Control control, double value) override;

private:
    struct Unref {
        void operator()(void* object) const
        {
            g_object_unref(object);
        }
    };
    template <class Type>
    using Handle = std::unique_ptr<Type, Unref>;

    void chooseFormat();
    ArvBuffer* newestBuffer(std::chrono::milliseconds limit);
    bool deliver(ArvBuffer* buffer, const FrameSink& sink);
    void noteNumber(std::uint64_t id);
    static Clock::time_point timeOf(ArvBuffer* buffer);

    Handle<ArvCamera> camera_;
    Handle<ArvStream> stream_;
    FrameConverter converter_;
    std::atomic<bool> lost_{false};
    std::uint64_t number_ = 0;
    std::uint64_t lastId_ = 0; // the camera's number of the last frame, which may wrap; 0: none yet
};

} // namespace tesmor::cameras
