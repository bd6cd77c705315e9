#include "fusion/weighted_mean.h"

namespace tesmor {

WeightedMean::WeightedMean(const ImageLayout& layout) noexcept
    : layout_(layout), weightSum_(makeZeroedArray<std::int32_t>(layout.pixelCount())),
      meanR_(makeZeroedArray<float>(layout.pixelCount())), sumR_(makeZeroedArray<float>(layout.pixelCount())),
      sumG_(makeZeroedArray<float>(layout.pixelCount())), sumB_(makeZeroedArray<float>(layout.pixelCount()))
{
}

bool WeightedMean::ready() const noexcept
{
    return weightSum_ && meanR_ && sumR_ && sumG_ && sumB_;
}

void WeightedMean::addRow(std::int32_t y, const std::uint8_t* imageRow, const std::int32_t* weights) noexcept
{
    const std::size_t first = static_cast<std::size_t>(layout_.width) * static_cast<std::size_t>(y);
    std::int32_t* const weightSum = weightSum_.get() + first;
    float* const sumR = sumR_.get() + first;
    float* const sumG = sumG_.get() + first;
    float* const sumB = sumB_.get() + first;
    for (std::int32_t x = 0; x < layout_.width; ++x) {
        const std::uint8_t* pixel = imageRow + 3 * x;
        weightSum[x] += weights[x];
        sumR[x] += static_cast<float>(compressHighlight(pixel[2]) * weights[x]);
        sumG[x] += static_cast<float>(compressHighlight(pixel[1]) * weights[x]);
        sumB[x] += static_cast<float>(compressHighlight(pixel[0]) * weights[x]);
    }
}

void WeightedMean::normalise() noexcept
{
    for (std::size_t i = 0; i < layout_.pixelCount(); ++i) {
        const auto weight = static_cast<float>(weightSum_[i]);
        meanR_[i] = sumR_[i] / weight;
        sumR_[i] = sumG_[i] / weight;
        sumG_[i] = sumB_[i] / weight;
    }
}

} // namespace tesmor
