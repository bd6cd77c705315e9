// SPDX-License-Identifier: GPL-2.0-or-later
// The transforms that a fusion cannot do without: three colours, forward and back, for every image and for the mean.
// Planned with the fusion's flags, on memory that is obtained as the fusion obtains it and was used before.
#pragma once

#include "fusion/page_array.h"

#include <cstdint>
#include <fftw3.h>

namespace tesmor::bench {

// The very plans of the fusion, row for row and column for column, on memory that stays in the cache but for the
// spectrum that the rows pass through. What a fusion needs beside them, taking columns out and putting them in again
// too, is not here: nothing with these plans is faster.
class BareTransforms {
public:
    // Pixels, images.
    BareTransforms(int width, int height, int images);
    ~BareTransforms();
    BareTransforms(const BareTransforms&) = delete;
    BareTransforms& operator=(const BareTransforms&) = delete;

    void plan();
    void forgetPlans();

    // With noise, as an image has. Unnormalised transforms let the values of the rows grow; from these they stay finite
    // for a run of some ten images.
    void fill();

    void run() const;

private:
    int width_;
    int height_;
    int images_;
    int frequencies_; // of a row
    PageArray<double> row_;
    PageArray<fftw_complex> column_;
    PageArray<fftw_complex> columnSpectrum_;
    PageArray<fftw_complex> columnBack_;
    PageArray<fftw_complex> spectrum_;
    fftw_plan forwardRow_ = nullptr;
    fftw_plan inverseRow_ = nullptr;
    fftw_plan forwardColumn_ = nullptr;
    fftw_plan inverseColumn_ = nullptr;
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
