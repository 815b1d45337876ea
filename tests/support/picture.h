#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/host.h"
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

// Reads a file through the format table, info and reader into a memory store, as Convert does.
// Answers the error code; `info` receives the record after info.
int ReadPicture(const std::string& path, Picture& out, Host* host = nullptr,
                ImageInfo* info = nullptr, uint32_t imageIndex = 0);

// Writes a picture with the writer of the row for `path`'s extension (or `row` when given).
int WritePicture(const Picture& picture, const std::string& path, int row = -1,
                 Host* host = nullptr);

// The picture's colours, row by row, left to right.
std::vector<Rgb> Colours(const Picture& picture);

}  // namespace pxm::test
