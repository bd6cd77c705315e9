// SPDX-License-Identifier: GPL-2.0-or-later
// Figures for the quality of an image. All images are of format QImage::Format_BGR888.
#pragma once

#include <QImage>

namespace tesmor::apps {

// How sharp the edges are: root mean square of the brightness gradient, grey levels per pixel. Comparable between
// images of the same field. At least 3 x 3 pixels.
double edgeSharpness(const QImage& image);

// The next two compare an image with a reference of the same size.

// Peak signal-to-noise ratio over all three channels, decibels; infinite when the images are equal.
double psnr(const QImage& image, const QImage& reference);

// Structural similarity of brightness, mean over windows of 8 x 8 pixels, 4 apart; 1 when the images are equal.
// Z. Wang, A. C. Bovik, H. R. Sheikh, E. P. Simoncelli, Image quality assessment: from error visibility to structural
// similarity, IEEE Transactions on Image Processing 13 (2004). At least 8 x 8 pixels.
double ssim(const QImage& image, const QImage& reference);

} // namespace tesmor::apps
