#include "core/pixels.h"

#include <algorithm>

namespace pxm {

void ReversePixels(uint8_t* row, uint32_t width, uint32_t storageBits) {
  if (width < 2) return;
  if (storageBits == 8) {
    std::reverse(row, row + width);
    return;
  }
  if (storageBits == 24) {
    for (uint32_t a = 0, b = width - 1; a < b; ++a, --b)
      for (int c = 0; c < 3; ++c) std::swap(row[3 * a + c], row[3 * b + c]);
    return;
  }
  for (uint32_t a = 0, b = width - 1; a < b; ++a, --b) {
    uint32_t pa = PixelAt(row, a, storageBits);
    SetPixelAt(row, a, storageBits, PixelAt(row, b, storageBits));
    SetPixelAt(row, b, storageBits, pa);
  }
}

void CopyPixels(uint8_t* dst, const uint8_t* src, uint32_t srcX, uint32_t count,
                uint32_t storageBits) {
  if (storageBits == 8) {
    std::memcpy(dst, src + srcX, count);
  } else if (storageBits == 24) {
    std::memcpy(dst, src + 3 * static_cast<size_t>(srcX), 3 * static_cast<size_t>(count));
  } else {
    for (uint32_t x = 0; x < count; ++x)
      SetPixelAt(dst, x, storageBits, PixelAt(src, srcX + x, storageBits));
  }
}

}  // namespace pxm
