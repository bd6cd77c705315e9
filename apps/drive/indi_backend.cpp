// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/backends.h"
#include "drive/indi_motor.h"

#include <condition_variable>
#include <libindi/baseclient.h>
#include <libindi/basedevice.h>
#include <libindi/indiproperty.h>
#include <mutex>
#include <set>

namespace tesmor::drive {

const bool HAS_INDI = true;

namespace {

constexpr auto QUIET = std::chrono::milliseconds(700); // from one device to the next

// Collects the focusers of a server by what their drivers say of themselves.
class Lister : public INDI::BaseClient {
public:
    ~Lister() override
    {
        disconnectServer();
    }

    std::set<std::string> focusers()
    {
        std::unique_lock lock(mutex_);
        while (changed_.wait_for(lock, QUIET) == std::cv_status::no_timeout) {
        }
        return focusers_;
    }

protected:
    void newProperty(INDI::Property property) override
    {
        if (!property.isNameMatch("DRIVER_INFO"))
            return;
        const bool isFocuser =
            (property.getBaseDevice().getDriverInterface() & INDI::BaseDevice::FOCUSER_INTERFACE) != 0;
        const std::lock_guard lock(mutex_);
        if (isFocuser)
            focusers_.insert(property.getDeviceName());
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::string> focusers_;
};

} // namespace

std::unique_ptr<Motor> makeIndiMotor(const Options& options)
{
    return std::make_unique<IndiMotor>(IndiSettings{options.indi.device, options.indi.host, options.indi.port});
}

std::vector<FoundMotor> findIndiMotors()
{
    std::vector<FoundMotor> found;
    const IndiSettings settings;
    Lister lister;
    lister.setServer(settings.host.c_str(), settings.port);
    lister.setConnectionTimeout(1, 0);
    if (!lister.connectServer())
        return found;
    for (const std::string& name : lister.focusers())
        found.push_back({"INDI focuser " + name, "indi --device \"" + name + "\""});
    return found;
}

} // namespace tesmor::drive
