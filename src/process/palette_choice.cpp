#include "process/palette_choice.h"

#include <algorithm>

namespace pxm {

uint32_t PaletteChoiceTableBits(uint32_t choice) {
  static constexpr uint32_t kBits[] = {0, 24, 8, 7, 6, 5, 4, 3, 2, 3, 4, 8};
  return choice < std::size(kBits) ? kBits[choice] : 0;
}

uint32_t PaletteChoiceBits(uint32_t choice) { return std::min(PaletteChoiceTableBits(choice), 8u); }

const std::array<Rgb, 16> kFixed16Colours = {{
    {0, 0, 0}, {128, 0, 0}, {0, 128, 0}, {128, 128, 0},
    {0, 0, 128}, {128, 0, 128}, {0, 128, 128}, {128, 128, 128},
    {192, 192, 192}, {255, 0, 0}, {0, 255, 0}, {255, 255, 0},
    {0, 0, 255}, {255, 0, 255}, {0, 255, 255}, {255, 255, 255},
}};

Rgb CubeCorner(uint32_t i) {
  return Rgb{static_cast<uint8_t>(i & 1 ? 255 : 0), static_cast<uint8_t>(i & 2 ? 255 : 0),
             static_cast<uint8_t>(i & 4 ? 255 : 0)};
}

}  // namespace pxm
