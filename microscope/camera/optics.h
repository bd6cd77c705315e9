// SPDX-License-Identifier: GPL-2.0-or-later
// The specimen seen through an objective: every part of it blurred by its distance from the focus.
#pragma once

#include "microscope/camera/objective.h"
#include "microscope/camera/scene.h"
#include "microscope/camera/warp.h"
#include "microscope/specimen/specimen.h"

#include <cstddef>
#include <vector>

namespace tesmor::microscope {

// The sharp picture is blurred beforehand to a series of widths; a pixel of the view is mixed of the two pictures whose
// widths lie around that pixel's own. Each detail so fades steadily with its distance from the focus. Blur stops
// growing at a quarter of the picture's width.
class Optics : public Scene {
public:
    Optics(Specimen specimen, const Objective& objective);

    std::int32_t width() const override
    {
        return width_;
    }

    std::int32_t height() const override
    {
        return height_;
    }

    std::int32_t margin() const override
    {
        return margin_;
    }

    void renderRow(double position, std::int32_t row, std::span<std::uint16_t> pixels) const override;

    // The picture that is sharp everywhere.
    Picture sharp() const
    {
        return {width_, height_, margin_, pictures_.front()};
    }

    // For each pixel the position where it is in focus; of the whole picture.
    const std::vector<float>& heightMap() const
    {
        return heightMap_;
    }

private:
    // Between which two of the pictures, and how far: 0 is the first, ONE the second.
    struct Mix {
        std::uint16_t picture;
        std::uint16_t share;
    };
    static constexpr int SHARE_BITS = 15;

    void makePictures(const Specimen& specimen);
    void makeMixes(double blurPerStep, double depthOfField);

    const std::int32_t margin_;
    const std::int32_t width_;
    const std::int32_t height_;
    const std::vector<float> heightMap_;

    std::vector<double> sigmas_; // pixels; of the pictures, from sharp to widest
    std::vector<std::vector<std::uint16_t>> pictures_;
    std::vector<Mix> mixes_; // by distance from the focus
    float mixesPerStep_ = 0;
};

} // namespace tesmor::microscope
