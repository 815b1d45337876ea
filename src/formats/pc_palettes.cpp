#include "formats/pc_palettes.h"

#include <array>

namespace pxm {

Rgb CgaColour(uint32_t number) {
  // Bit 0 blue, bit 1 green, bit 2 red at two thirds, bit 3 adds a third to all three; dark
  // yellow is the exception that monitors made brown by halving its green.
  number &= 15;
  const uint8_t base = (number & 8) ? 0x55 : 0;
  auto level = [&](uint32_t bit) {
    return static_cast<uint8_t>(base + ((number & bit) ? 0xAA : 0));
  };
  Rgb c{level(4), level(2), level(1)};
  if (number == 6) c.green = 0x55;
  return c;
}

Rgb EgaColour(uint32_t number) {
  auto level = [&](uint32_t strong, uint32_t weak) {
    return static_cast<uint8_t>(((number >> strong) & 1) * 0xAA + ((number >> weak) & 1) * 0x55);
  };
  return Rgb{level(2, 5), level(1, 4), level(0, 3)};
}

Palette VgaDefaultPalette() {
  Palette p{};
  auto six = [](int r, int g, int b) {
    return Rgb{static_cast<uint8_t>(r * 4), static_cast<uint8_t>(g * 4),
               static_cast<uint8_t>(b * 4)};
  };
  for (uint32_t i = 0; i < 16; ++i) {
    const Rgb c = CgaColour(i);
    p[i] = six(c.red * 63 / 255, c.green * 63 / 255, c.blue * 63 / 255);
  }
  constexpr std::array<int, 16> kGreys = {0,  5,  8,  11, 14, 17, 20, 24,
                                          28, 32, 36, 40, 45, 50, 56, 63};
  for (size_t i = 0; i < kGreys.size(); ++i) p[16 + i] = six(kGreys[i], kGreys[i], kGreys[i]);
  // Each wheel runs from blue through magenta, red, yellow, green and cyan back towards blue,
  // over five levels from its low to its high value.
  constexpr int kLevels[9][5] = {
      {0, 16, 31, 47, 63}, {31, 39, 47, 55, 63}, {45, 49, 54, 58, 63},
      {0, 7, 14, 21, 28},  {14, 17, 21, 24, 28}, {20, 22, 24, 26, 28},
      {0, 4, 8, 12, 16},   {8, 10, 12, 14, 16},  {11, 12, 13, 15, 16},
  };
  size_t at = 32;
  for (const auto& l : kLevels) {
    const int lo = l[0], hi = l[4];
    for (int k = 0; k < 4; ++k) p[at++] = six(l[k], lo, hi);  // blue to magenta
    for (int k = 4; k > 0; --k) p[at++] = six(hi, lo, l[k]);  // magenta to red
    for (int k = 0; k < 4; ++k) p[at++] = six(hi, l[k], lo);  // red to yellow
    for (int k = 4; k > 0; --k) p[at++] = six(l[k], hi, lo);  // yellow to green
    for (int k = 0; k < 4; ++k) p[at++] = six(lo, hi, l[k]);  // green to cyan
    for (int k = 4; k > 0; --k) p[at++] = six(lo, l[k], hi);  // cyan to blue
  }
  return p;  // the last eight stay black
}

}  // namespace pxm
