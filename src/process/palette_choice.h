#pragma once

#include <array>
#include <cstdint>

#include "core/image_info.h"

namespace pxm {

// The depth a palette choice makes, as its table holds it: 24 for the orthogonal choice, 0 for
// the unused choice 0 and for values past the table.
uint32_t PaletteChoiceTableBits(uint32_t choice);
// The same, limited to 8: the depth of the picture colour reduction makes.
uint32_t PaletteChoiceBits(uint32_t choice);

// The fixed 16-colour table of the "Windows 16 colour fixed" choice, also the last 16 entries of
// "240 colour quantized + 16".
extern const std::array<Rgb, 16> kFixed16Colours;

// The eight corners of the RGB cube for "8 colour Bayer fixed": entry i has red on for bit 1,
// green for bit 2 and blue for bit 4, so 0 is black, 7 white, and the order follows the fixed
// 16-colour table's bright half.
Rgb CubeCorner(uint32_t i);

}  // namespace pxm
