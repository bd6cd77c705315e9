// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/shrink.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr int CHANNELS = 3;
constexpr unsigned WHOLE = 256; // the weights of one span together: sums of a row fit into 16 bits
constexpr unsigned HALF = WHOLE / 2;

// What a range of pixels covers along one side. All spans have as many taps, some of them of weight 0.
struct Spans {
    Spans(int from, int to, int begin, int count);

    int taps;
    std::vector<int> first;
    std::vector<std::uint16_t> weights; // taps for each
};

Spans::Spans(int from, int to, int begin, int count)
{
    const double length = static_cast<double>(from) / to;
    taps = std::min(from, static_cast<int>(std::ceil(length)) + 1);
    for (int i = begin; i < begin + count; ++i) {
        const double start = i * length;
        first.push_back(std::min(static_cast<int>(start), from - taps));
        unsigned before = 0;
        for (int end = first.back() + 1; end <= first.back() + taps; ++end) {
            const auto upTo = static_cast<unsigned>(std::lround(std::clamp((end - start) / length, 0.0, 1.0) * WHOLE));
            weights.push_back(static_cast<std::uint16_t>(upTo - before));
            before = upTo;
        }
    }
}

// The rows that one row covers, as their mean times WHOLE.
void addRows(const QImage& image, const Spans& rows, int row, int firstByte, std::vector<std::uint16_t>& sums)
{
    std::ranges::fill(sums, 0);
    const std::uint16_t* weights = rows.weights.data() + std::ptrdiff_t{row} * rows.taps;
    for (int tap = 0; tap < rows.taps; ++tap) {
        const unsigned weight = weights[tap];
        if (weight == 0)
            continue;
        const uchar* const bytes = image.constScanLine(rows.first[static_cast<std::size_t>(row)] + tap) + firstByte;
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i] = static_cast<std::uint16_t>(sums[i] + weight * bytes[i]);
    }
}

// `taps` tells the number of taps: a constant where that makes it faster.
void addColumns(const std::vector<std::uint16_t>& sums, const Spans& columns, QRgb* pixels, auto taps)
{
    const std::uint16_t* weight = columns.weights.data();
    for (const int first : columns.first) {
        const std::uint16_t* sum = sums.data() + std::ptrdiff_t{first - columns.first.front()} * CHANNELS;
        unsigned blue = HALF * WHOLE;
        unsigned green = HALF * WHOLE;
        unsigned red = HALF * WHOLE;
        for (int tap = 0; tap < taps(); ++tap, sum += CHANNELS, ++weight) {
            blue += *weight * sum[0];
            green += *weight * sum[1];
            red += *weight * sum[2];
        }
        constexpr unsigned SQUARE = WHOLE * WHOLE;
        *pixels++ = 0xFF000000U | red / SQUARE << 16U | green / SQUARE << 8U | blue / SQUARE;
    }
}

} // namespace

QImage shrunk(const QImage& image, QSize size, const QRect& part)
{
    QImage smaller(part.size(), QImage::Format_RGB32);
    if (smaller.isNull())
        return smaller;
    const Spans rows(image.height(), size.height(), part.top(), part.height());
    const Spans columns(image.width(), size.width(), part.left(), part.width());
    const int firstByte = columns.first.front() * CHANNELS;
    std::vector<std::uint16_t> sums(
        static_cast<std::size_t>((columns.first.back() + columns.taps) * CHANNELS - firstByte));
    for (int y = 0; y < part.height(); ++y) {
        addRows(image, rows, y, firstByte, sums);
        auto* const pixels = reinterpret_cast<QRgb*>(smaller.scanLine(y));
        switch (columns.taps) {
        case 3: // half to whole size
            addColumns(sums, columns, pixels, [] { return 3; });
            break;
        case 4: // a third to a half
            addColumns(sums, columns, pixels, [] { return 4; });
            break;
        default:
            addColumns(sums, columns, pixels, [&] { return columns.taps; });
        }
    }
    return smaller;
}

} // namespace tesmor::apps
