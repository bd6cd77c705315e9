// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/genicam/pixel_format.h"

#include "protocol/frame_layout.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>

namespace tesmor::cameras {

namespace {

constexpr int COPY = -1;

struct Conversion {
    ArvPixelFormat format;
    int code; // OpenCV's, or COPY
    int channels;
};

constexpr std::array CONVERSIONS{
    Conversion{ARV_PIXEL_FORMAT_BGR_8_PACKED, COPY, 3},
    Conversion{ARV_PIXEL_FORMAT_RGB_8_PACKED, cv::COLOR_RGB2BGR, 3},
    Conversion{ARV_PIXEL_FORMAT_BAYER_RG_8, cv::COLOR_BayerRGGB2BGR, 1},
    Conversion{ARV_PIXEL_FORMAT_BAYER_GR_8, cv::COLOR_BayerGRBG2BGR, 1},
    Conversion{ARV_PIXEL_FORMAT_BAYER_GB_8, cv::COLOR_BayerGBRG2BGR, 1},
    Conversion{ARV_PIXEL_FORMAT_BAYER_BG_8, cv::COLOR_BayerBGGR2BGR, 1},
    Conversion{ARV_PIXEL_FORMAT_MONO_8, cv::COLOR_GRAY2BGR, 1},
};

constexpr auto FORMATS = [] {
    std::array<ArvPixelFormat, CONVERSIONS.size()> formats{};
    std::ranges::transform(CONVERSIONS, formats.begin(), &Conversion::format);
    return formats;
}();

} // namespace

std::span<const ArvPixelFormat> convertibleFormats()
{
    return FORMATS;
}

bool isConvertible(ArvPixelFormat format)
{
    return std::ranges::find(FORMATS, format) != FORMATS.end();
}

const std::uint8_t* FrameConverter::convert(ArvPixelFormat format, const std::uint8_t* pixels, std::int32_t width,
                                            std::int32_t height)
{
    const Conversion& conversion = *std::ranges::find(CONVERSIONS, format, &Conversion::format);
    const auto rowLength = static_cast<std::size_t>(rowBytes(width));
    if (conversion.code == COPY && rowLength == 3 * static_cast<std::size_t>(width))
        return pixels;
    frame_.resize(rowLength * static_cast<std::size_t>(height));
    const cv::Mat from(height, width, CV_8UC(conversion.channels), const_cast<std::uint8_t*>(pixels));
    cv::Mat to(height, width, CV_8UC3, frame_.data(), rowLength);
    if (conversion.code == COPY)
        from.copyTo(to);
    else
        cv::cvtColor(from, to, conversion.code);
    return frame_.data();
}

} // namespace tesmor::cameras
