// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/optics.h"

#include "microscope/camera/blur.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tesmor::microscope {

namespace {

constexpr double FINEST_BLUR = 0.75; // pixels, of the first picture after the sharp one
constexpr double WIDEST_BLUR = 0.25; // of the picture's width
constexpr double MIXES_PER_DEPTH_OF_FIELD = 64;

std::vector<std::uint16_t> asLevels(const ColourField& picture, const std::vector<float>& light)
{
    std::vector<std::uint16_t> levels(picture.values.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const float brightness = picture.values[i] * light[i / 3] * LEVELS_PER_GREY;
        levels[i] = static_cast<std::uint16_t>(std::clamp(brightness, 0.0f, 255.0f * LEVELS_PER_GREY) + 0.5f);
    }
    return levels;
}

} // namespace

Optics::Optics(Specimen specimen, const Objective& objective)
    : margin_(specimen.margin), width_(specimen.colour.width - 2 * margin_),
      height_(specimen.colour.height - 2 * margin_), heightMap_(std::move(specimen.heightMap))
{
    makePictures(specimen);
    makeMixes(objective.blurPerStep() * width_ / FIELD_WIDTH, objective.depthOfFieldSteps());
}

void Optics::makePictures(const Specimen& specimen)
{
    sigmas_.push_back(0);
    pictures_.push_back(asLevels(specimen.colour, specimen.light));
    const double widest = WIDEST_BLUR * width_;
    for (double sigma = FINEST_BLUR; sigmas_.back() < widest; sigma *= 2) {
        sigmas_.push_back(std::min(sigma, widest));
        pictures_.push_back(asLevels(blurred(specimen.colour, sigmas_.back()), specimen.light));
    }
}

void Optics::makeMixes(double blurPerStep, double depthOfField)
{
    mixesPerStep_ = static_cast<float>(MIXES_PER_DEPTH_OF_FIELD / depthOfField);
    const double widest = sigmas_.back();
    std::size_t picture = 0;
    for (double sigma = 0; sigma < widest;) {
        while (sigma >= sigmas_[picture + 1])
            ++picture;
        // Variances add up, so the share is by variance.
        const double low = sigmas_[picture] * sigmas_[picture];
        const double high = sigmas_[picture + 1] * sigmas_[picture + 1];
        const double share = (sigma * sigma - low) / (high - low);
        mixes_.push_back(
            {static_cast<std::uint16_t>(picture), static_cast<std::uint16_t>(std::lround(share * (1 << SHARE_BITS)))});
        sigma = static_cast<double>(mixes_.size()) / mixesPerStep_ * blurPerStep;
    }
    mixes_.push_back({static_cast<std::uint16_t>(sigmas_.size() - 2), 1 << SHARE_BITS});
}

void Optics::renderRow(double position, std::int32_t row, std::span<std::uint16_t> pixels) const
{
    const auto focus = static_cast<float>(position);
    const auto last = static_cast<float>(mixes_.size() - 1);
    const auto rowWidth = static_cast<std::size_t>(width_ + 2 * margin_);
    const std::size_t start = static_cast<std::size_t>(row + margin_) * rowWidth;
    for (std::size_t x = 0; x < rowWidth; ++x) {
        const float distance = std::abs(focus - heightMap_[start + x]) * mixesPerStep_;
        const Mix mix = mixes_[static_cast<std::size_t>(std::min(distance, last))];
        const std::uint16_t* const a = pictures_[mix.picture].data() + 3 * (start + x);
        const std::uint16_t* const b = pictures_[mix.picture + 1u].data() + 3 * (start + x);
        for (std::size_t c = 0; c < 3; ++c)
            pixels[3 * x + c] = static_cast<std::uint16_t>(a[c] + ((b[c] - a[c]) * mix.share >> SHARE_BITS));
    }
}

} // namespace tesmor::microscope
