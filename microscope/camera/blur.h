// SPDX-License-Identifier: GPL-2.0-or-later
// Gaussian blur of an image of three interleaved channels.
#pragma once

#include "microscope/specimen/specimen.h"

namespace tesmor::microscope {

// The image as it would be with everything spread by `sigma` pixels (standard deviation, more than 0); beyond its edges
// the image goes on mirrored. Three passes of a box with fractional ends, whose variance is exact.
// P. Gwosdek, S. Grewenig, A. Bruhn, J. Weickert: Theoretical foundations of Gaussian convolution by extended box
// filtering (2011).
ColourField blurred(const ColourField& image, double sigma);

} // namespace tesmor::microscope
