// SPDX-License-Identifier: GPL-2.0-or-later
// The transforms that a fusion cannot do without: three colours, forward and back, for every image and for the mean.
// Planned with the fusion's flags, on memory that is obtained as the fusion obtains it and was used before.
#pragma once

#include "fusion/page_array.h"

#include <cstdint>
#include <fftw3.h>

namespace tesmor::bench {

// Rows through one buffer and columns in groups, as the fusion does it.
class BareTransforms {
public:
    // Pixels, images.
    BareTransforms(int width, int height, int images);
    ~BareTransforms();
    BareTransforms(const BareTransforms&) = delete;
    BareTransforms& operator=(const BareTransforms&) = delete;

    void plan();
    void forgetPlans();

    // With noise, as an image has. Unnormalised transforms let the values grow; from these they stay finite for a run
    // of some ten images.
    void fill();

    void run() const;

private:
    int width_;
    int height_;
    int images_;
    int groups_;
    int pitch_;
    PageArray<double> row_;
    PageArray<fftw_complex> spectrum_;
    fftw_plan forwardRow_ = nullptr;
    fftw_plan inverseRow_ = nullptr;
    fftw_plan forwardGroup_ = nullptr;
    fftw_plan inverseGroup_ = nullptr;
};

// Whole planes, with the two-dimensional transforms that FFTW has ready.
class WholeTransforms {
public:
    WholeTransforms(int width, int height, int images);
    ~WholeTransforms();
    WholeTransforms(const WholeTransforms&) = delete;
    WholeTransforms& operator=(const WholeTransforms&) = delete;

    void plan();
    void forgetPlans();
    void fill();
    void run() const;

private:
    int width_;
    int height_;
    int images_;
    PageArray<double> plane_;
    PageArray<fftw_complex> spectrum_;
    fftw_plan forward_ = nullptr;
    fftw_plan inverse_ = nullptr;
};

} // namespace tesmor::bench
