#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/image_info.h"

namespace pxm::test {

// A whole picture in the store's row packing, for building inputs and checking outputs.
struct Picture {
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t bits = 0;
  Palette palette{};
  std::vector<std::vector<uint8_t>> rows;  // row 0 = top, each StoreBytesPerLine long

  // A blank picture of the given size and depth.
  static Picture Blank(uint32_t width, int32_t depth, uint32_t bits);
  // Pixel value at (x, y): an index, or 0xRRGGBB for 24-bit pictures.
  uint32_t Pixel(uint32_t x, int32_t y) const;
  void SetPixel(uint32_t x, int32_t y, uint32_t value);
  // The colour at (x, y) through the palette.
  Rgb Colour(uint32_t x, int32_t y) const;
};

// A deterministic test pattern: every pixel different where the depth allows, awkward values at
// the edges. Palette pictures get a palette of distinct colours.
Picture Pattern(uint32_t width, int32_t depth, uint32_t bits, uint32_t seed = 1);

// The picture's colours, row by row, left to right.
std::vector<Rgb> Colours(const Picture& picture);

}  // namespace pxm::test
