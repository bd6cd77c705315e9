// SPDX-License-Identifier: GPL-2.0-or-later
// A USB device that is not there: a camera with a focus controller, as umockdev shows it to programs that this one
// starts. It has the serial number S7, takes the vendor's requests without data, and acknowledges moves at endpoint
// 0x81.
#pragma once

#include <array>
#include <deque>
#include <mutex>
#include <umockdev.h>
#include <vector>

struct usbdevfs_urb;

namespace tesmor::test {

class FakeUsbCamera {
public:
    using Setup = std::array<unsigned, 4>; // type, request, value, index

    FakeUsbCamera();
    ~FakeUsbCamera();

    // That are the vendor's, in order.
    std::vector<Setup> requests() const;

    void stall(bool stalls); // it refuses all requests
    void hold(bool held);    // a motor that is held does not come to the end of its move

    // A device without a cable answers nothing, and is not listed.
    void unplug();
    void plugIn();

private:
    static gboolean onIoctl(UMockdevIoctlBase* base, UMockdevIoctlClient* client, gpointer camera);
    bool answer(UMockdevIoctlClient* client);
    void submit(UMockdevIoctlClient* client);
    int control(UMockdevIoctlData* buffer);
    bool reap(UMockdevIoctlClient* client);
    void finish(UMockdevIoctlData* urb, int status, int length);

    UMockdevTestbed* const testbed_;
    UMockdevIoctlBase* const base_;

    mutable std::mutex mutex_;
    std::vector<Setup> requests_;
    std::deque<UMockdevIoctlData*> waiting_; // for an acknowledgement
    std::deque<UMockdevIoctlData*> done_;
    int acknowledgements_ = 0; // that nobody has read
    bool stalls_ = false;
    bool held_ = false;
    bool gone_ = false;
};

} // namespace tesmor::test
