// SPDX-License-Identifier: GPL-2.0-or-later
// The service end of the drive link: brings the requests of the library to a motor's controller, and its
// acknowledgements back. On Linux it is a local socket, on Windows a unit of the simulated driver.
//
// Clients
//   Any number may connect and ask what changes nothing, so that drives can be listed without disturbing anybody. A
//   client holds the drive from the moment its opening request was accepted, until its closing request or its end.
//   Meanwhile everybody else is turned away: who connects, and who is connected and wants to open or to move. But only
//   after a look whether the holder has gone: a library that closes its link and opens the next one is never turned
//   away. A client that disappears, in mid-move too, leaves the service ready for the next one. On Windows the system
//   lets one client in at a time.
#pragma once

#include "drive_service/motor_controller.h"

#include <memory>

namespace tesmor::service {

inline constexpr std::uint8_t ACKNOWLEDGEMENT_BYTE = 0x06;

class DriveService {
public:
    // Opens the unit, 0 to 15, and serves it on threads of its own until the end, or until the controller vanishes.
    // Clients can connect when it returns. The controller must outlive the service.
    // Throws std::system_error when the unit is taken or the system fails.
    DriveService(MotorController& controller, unsigned unit);

    // Cuts the link, closes the unit and ends the threads; waits for a request that is being answered.
    ~DriveService();

    class Server; // the system's

private:
    std::unique_ptr<Server> server_;
};

} // namespace tesmor::service
