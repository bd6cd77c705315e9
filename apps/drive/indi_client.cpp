// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/indi_client.h"

#include <cstdlib>
#include <libindi/basedevice.h>
#include <libindi/indidevapi.h>
#include <libindi/indiproperty.h>

// In place of the client library's own, which would tell each attempt to connect between our lines.
extern "C" __attribute__((visibility("default"))) void IDLog(const char*, ...) {}

namespace tesmor::drive {

namespace {

void take(FocuserNumber& number, INDI::Property& property)
{
    const auto* widget = property.getNumber()->at(0);
    number = {widget->getValue(), widget->getMin(), widget->getMax(), property.getState(), number.news + 1};
}

} // namespace

IndiClient::~IndiClient()
{
    disconnectServer();
}

FocuserState IndiClient::state() const
{
    const std::lock_guard lock(mutex_);
    return state_;
}

void IndiClient::sendMove(std::int64_t steps)
{
    INDI::PropertySwitch motion = getDevice(device_.c_str()).getSwitch("FOCUS_MOTION");
    if (auto* direction = motion.findWidgetByName(steps > 0 ? "FOCUS_OUTWARD" : "FOCUS_INWARD")) {
        motion.reset(); // else the other direction stays set, too, and counts
        direction->setState(ISS_ON);
        sendNewSwitch(motion);
    }
    sendNewNumber(device_.c_str(), "REL_FOCUS_POSITION", "FOCUS_RELATIVE_POSITION",
                  static_cast<double>(std::abs(steps)));
}

void IndiClient::newProperty(INDI::Property property)
{
    updateProperty(property);
}

void IndiClient::updateProperty(INDI::Property property)
{
    if (device_ != property.getDeviceName())
        return;
    const std::lock_guard lock(mutex_);
    if (property.isNameMatch("CONNECTION")) {
        state_.isThere = true;
        state_.isConnected =
            property.getState() == IPS_OK && property.getSwitch()->findWidgetByName("CONNECT")->getState() == ISS_ON;
    }
    if (property.isNameMatch("REL_FOCUS_POSITION"))
        take(state_.relative, property);
    if (property.isNameMatch("ABS_FOCUS_POSITION"))
        take(state_.absolute, property);
    changed_.notify_all();
}

void IndiClient::serverDisconnected(int)
{
    const std::lock_guard lock(mutex_);
    state_.hasGone = true;
    changed_.notify_all();
}

} // namespace tesmor::drive
