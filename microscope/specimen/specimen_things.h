// SPDX-License-Identifier: GPL-2.0-or-later
// The things in the specimen. Lengths in coordinates of the slide, heights in depths of field.
#pragma once

#include "microscope/specimen/random.h"
#include "microscope/specimen/specimen_canvas.h"

namespace tesmor::microscope {

struct Place {
    double x;
    double y;
    double height; // of the thing's middle
};

// A tissue cell: a dome with an uneven outline, grainy inside, with a dark nucleus.
void layCell(Canvas& canvas, Random& random, const Place& place, double radius);

// A spindle-shaped diatom shell: cross ribs and a middle line; it lies aslant.
void laySpindle(Canvas& canvas, Random& random, const Place& place, double halfLength);

// A round diatom shell: rows of pores, spokes and a double rim.
void layWheel(Canvas& canvas, Random& random, const Place& place, double radius);

// A long fibre that bends through the whole field.
void layFibre(Canvas& canvas, Random& random, const Place& place, double halfWidth);

// A speck, such as a bacterium.
void laySpeck(Canvas& canvas, Random& random, const Place& place, double radius);

} // namespace tesmor::microscope
