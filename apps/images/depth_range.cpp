// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/depth_range.h"

#include "images/image_files.h"
#include "terminal/errors.h"

#include <QColorSpace>
#include <QRegularExpression>

#include <algorithm>
#include <functional>
#include <new>

namespace tesmor::apps {

namespace {

constexpr double DARKEST_SHARE = 0.001; // of all values, left out at each end

// Grayscale16 or RGBX64.
QImage deepened(const QImage& image)
{
    QImage deep = image.convertToFormat(isGrey(image) ? QImage::Format_Grayscale16 : QImage::Format_RGBX64);
    if (deep.isNull())
        throw std::bad_alloc();
    return deep;
}

std::vector<std::uint8_t> tableOf(DepthRange range)
{
    std::vector<std::uint8_t> table(65536);
    const int span = range.high - range.low;
    for (int value = 0; value < 65536; ++value)
        table[static_cast<std::size_t>(value)] =
            static_cast<std::uint8_t>((std::clamp(value - range.low, 0, span) * std::int64_t{255} + span / 2) / span);
    return table;
}

} // namespace

RangeChoice rangeChoiceOf(const QString& text)
{
    using Kind = RangeChoice::Kind;
    if (text == "auto")
        return {Kind::AUTO};
    if (text == "full")
        return {Kind::FULL};
    static const QRegularExpression pattern(R"(^([0-9]{1,5}),([0-9]{1,5})\z)");
    const auto match = pattern.match(text);
    const DepthRange range = {match.captured(1).toInt(), match.captured(2).toInt()};
    if (!match.hasMatch() || range.low >= range.high || range.high > FULL_RANGE.high)
        throw UsageError(
            QString("--range is '%1'; it must be auto, full, or LOW,HIGH with LOW below HIGH, as in 100,4095")
                .arg(text));
    return {Kind::GIVEN, range};
}

void ValueCounts::add(const QImage& image)
{
    const QImage deep = deepened(image);
    const bool grey = deep.format() == QImage::Format_Grayscale16;
    for (int y = 0; y < deep.height(); ++y) {
        const auto* value = reinterpret_cast<const std::uint16_t*>(deep.constScanLine(y));
        for (int x = 0; x < deep.width(); ++x, value += grey ? 1 : 4) {
            for (int channel = 0; channel < (grey ? 1 : 3); ++channel)
                ++counts_[value[channel]];
        }
    }
}

void ValueCounts::add(const ValueCounts& other)
{
    std::ranges::transform(counts_, other.counts_, counts_.begin(), std::plus());
}

DepthRange ValueCounts::usedRange() const
{
    std::uint64_t total = 0;
    for (const std::uint64_t count : counts_)
        total += count;
    // The first value, from one end, at which more than so many are passed.
    const auto valueAfter = [this](std::uint64_t leftOut, bool fromTop) {
        std::uint64_t passed = 0;
        for (int i = 0; i < 65536; ++i) {
            const int value = fromTop ? 65535 - i : i;
            passed += counts_[static_cast<std::size_t>(value)];
            if (passed > leftOut)
                return value;
        }
        return 0;
    };
    for (const auto leftOut :
         {static_cast<std::uint64_t>(static_cast<double>(total) * DARKEST_SHARE), std::uint64_t{0}}) {
        const DepthRange range = {valueAfter(leftOut, false), valueAfter(leftOut, true)};
        if (range.low < range.high)
            return range;
    }
    return FULL_RANGE;
}

QImage scaleToFrame(const QImage& image, DepthRange range)
{
    const QImage deep = deepened(image);
    QImage frame(image.size(), QImage::Format_BGR888);
    if (frame.isNull())
        throw std::bad_alloc();
    const bool grey = deep.format() == QImage::Format_Grayscale16;
    const std::vector<std::uint8_t> table = tableOf(range);
    for (int y = 0; y < deep.height(); ++y) {
        const auto* from = reinterpret_cast<const std::uint16_t*>(deep.constScanLine(y));
        std::uint8_t* to = frame.scanLine(y);
        for (int x = 0; x < deep.width(); ++x, from += grey ? 1 : 4, to += 3) {
            to[0] = table[from[grey ? 0 : 2]];
            to[1] = table[from[grey ? 0 : 1]];
            to[2] = table[from[0]];
        }
    }
    frame.setDotsPerMeterX(image.dotsPerMeterX());
    frame.setDotsPerMeterY(image.dotsPerMeterY());
    frame.setColorSpace(image.colorSpace());
    return frame;
}

} // namespace tesmor::apps
