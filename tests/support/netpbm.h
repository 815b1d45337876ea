#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

namespace pxm::test {

// An image decoded by another program, as RGB.
struct RgbImage {
  uint32_t width = 0;
  uint32_t height = 0;
  std::vector<Rgb> pixels;  // row by row from the top
};

// Parses a binary PPM (P6), PGM (P5) or PBM (P4) file as netpbm and ImageMagick write them.
bool ParseNetpbm(const std::string& bytes, RgbImage& out);
bool ReadNetpbmFile(const std::string& path, RgbImage& out);

}  // namespace pxm::test
