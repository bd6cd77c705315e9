// SPDX-License-Identifier: GPL-2.0-or-later
// The slices of one focus stack as the library hands them over.
#pragma once

#include "host/pending_result.h"

#include <QImage>

#include <cstdint>
#include <mutex>
#include <vector>

namespace tesmor::apps {

// Must outlive the camera and the library's session.
class StackCapture {
public:
    // Within a LibrarySession, once. Shows its progress on the standard output unless quiet. Returns the result code.
    std::int32_t run(std::uint16_t magnification, std::uint16_t slices, std::int32_t spacing, bool quiet);

    // What came, in order; null images where there was no memory.
    std::vector<QImage> takeImages();

private:
    static void receive(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                        std::int32_t result);
    std::size_t count();

    PendingResult result_;
    std::mutex mutex_;
    std::vector<QImage> images_;
};

} // namespace tesmor::apps
