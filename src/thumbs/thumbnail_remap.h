#pragma once

#include "process/colour_map.h"

namespace pxm {

// The "ThumbnailRemap" table: for every colour at 4 bits per channel, indexed as the colour
// engine's inverse maps are, the entry of the fixed thumbnail palette that the nearest-colour
// search finds for the cell's lower corner ((i mod 16) × 16, ((i div 16) mod 16) × 16,
// (i div 256) × 16). It is part of the program: made once, at first use, by the same search that
// every other inverse map comes from, so the two can never disagree.
const InverseColourMap& ThumbnailRemap();

}  // namespace pxm
