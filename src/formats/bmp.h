#pragma once

#include <string>

#include "core/image_info.h"

// Device-independent bitmaps with the 40-byte Windows header or the 12-byte OS/2 header; the
// BMP and DIB rows share these handlers.
namespace pxm {

int BmpInfo(ImageInfo& info, const std::string& path, int purpose);
int BmpRead(ImageInfo& info, const std::string& path);
int BmpWrite(ImageInfo& info, const std::string& path);

// Bytes of one file row: rows are padded to 32 bits.
constexpr uint64_t BmpRowBytes(uint32_t width, uint32_t bits) {
  return ((static_cast<uint64_t>(width) * bits + 31) / 32) * 4;
}

// The bit count written for a picture of `bits`: 1, 4, 8 or 24.
constexpr uint32_t BmpFileBits(uint32_t bits) {
  if (bits == 1) return 1;
  if (bits >= 2 && bits <= 4) return 4;
  if (bits >= 5 && bits <= 8) return 8;
  return 24;
}

}  // namespace pxm
