// The transforms that a fusion cannot do without: three colours, forward and back, for every image and for the mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fftw3.h>

namespace tesmor::bench {

// On one plane and one spectrum, obtained as the fusion obtains them and used before, planned with the same flags.
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
    std::size_t pixelCount() const;

    int width_;
    int height_;
    int images_;
    fftw_complex* plane_;
    fftw_complex* spectrum_;
    fftw_plan forward_ = nullptr;
    fftw_plan backward_ = nullptr;
};

} // namespace tesmor::bench
