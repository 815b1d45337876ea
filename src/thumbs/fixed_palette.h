#pragma once

#include "core/image_info.h"

namespace pxm {

// The thumbnail library's fixed 256-colour palette: entry i has red ((i >> 5) & 7) × 255 div 7,
// green ((i >> 2) & 7) × 255 div 7 and blue (i & 3) × 255 div 3, so that a colour's index is
// found again from its top bits. `which` selects a palette; 0 is the only one.
const Palette& ThumbGetPalette(int which);

}  // namespace pxm
