// The way on which control requests reach the controller: on Linux the drive link's local socket.
// One client at a time; another that comes meanwhile is turned away, but only after a look whether the first has gone.
// A client that disappears, in mid-move too, leaves the service ready for the next one.
#pragma once

#include "microscope/drive/drive_controller.h"

#include <memory>

namespace tesmor::microscope {

class DriveService {
public:
    // unit: 0 to 15. The controller must outlive the service.
    DriveService(DriveController& controller, unsigned unit);

    // Stops.
    ~DriveService();

    DriveService(const DriveService&) = delete;
    DriveService& operator=(const DriveService&) = delete;

    // Opens the unit and serves it on a thread of its own until `stop`, or until the controller vanishes. Clients can
    // connect when it returns. Throws std::system_error when the unit is taken or the system fails.
    void start();

    // Cuts the link, closes the unit and ends the thread; no more than a camera frame's time. Does nothing when stopped.
    void stop() noexcept;

private:
    class Server;

    DriveController& controller_;
    const unsigned unit_;
    std::unique_ptr<Server> server_; // none when stopped
};

} // namespace tesmor::microscope
