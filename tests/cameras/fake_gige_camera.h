// SPDX-License-Identifier: GPL-2.0-or-later
// A GigE Vision camera on the loopback interface, in a process of its own.
#pragma once

#include <arv.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace tesmor::test {

class FakeGigeCamera {
public:
    // Throws when it does not answer, such as when the loopback interface is down.
    FakeGigeCamera(std::string address, std::string serial) : address_(std::move(address))
    {
        std::string program = "arv-fake-gv-camera-0.8", atAddress = "-i", asSerial = "-s";
        char* arguments[] = {program.data(),  atAddress.data(), address_.data(),
                             asSerial.data(), serial.data(),    nullptr};
        if (posix_spawnp(&process_, program.c_str(), nullptr, nullptr, arguments, environ) != 0)
            throw std::runtime_error(program + " is not installed");
        for (int attempt = 0; attempt < 100; ++attempt) { // each some 50 ms or more
            if (ArvCamera* const camera = arv_camera_new(address_.c_str(), nullptr)) {
                g_object_unref(camera);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        end();
        throw std::runtime_error("the fake camera does not answer at " + address_ + "; is the interface lo up?");
    }

    ~FakeGigeCamera()
    {
        end();
    }

    void end()
    {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

    void set(ArvPixelFormat format, int width, int height) const
    {
        ArvCamera* const camera = arv_camera_new(address_.c_str(), nullptr);
        arv_camera_set_pixel_format(camera, format, nullptr);
        arv_camera_set_region(camera, 0, 0, width, height, nullptr);
        arv_camera_set_frame_rate(camera, 200, nullptr);
        g_object_unref(camera);
    }

private:
    std::string address_;
    pid_t process_ = 0;
};

} // namespace tesmor::test
