#pragma once

#include <cstdint>

#include "core/image_info.h"

namespace pxm {

// The fixed 256-colour palette: thumbnails are drawn in it, and so are true-colour pictures
// shown through 256 colours and the orthogonal colour reduction. Entry i has red
// ((i >> 5) & 7) × 255 div 7, green ((i >> 2) & 7) × 255 div 7 and blue (i & 3) × 255 div 3, so
// that a colour's index is found again from its top bits. `which` selects a palette; 0 is the
// only one.
const Palette& ThumbGetPalette(int which);

// The fixed palette's index of a colour from its top bits: 3 of red, 3 of green, 2 of blue.
constexpr uint8_t ThumbPaletteIndex(int red, int green, int blue) {
  return static_cast<uint8_t>((red & 0xE0) | ((green >> 3) & 0x1C) | (blue >> 6));
}

}  // namespace pxm
