#include "formats/photo_cd_pack.h"

#include <cstring>

namespace pxm {

bool ReadPcdPlanes(InputFile& in, const PcdResolution& r, PcdPlanes& out) {
  out.width = r.width;
  out.height = r.height;
  out.chromaShift = 1;
  const size_t lumaBytes = size_t{r.width} * r.height;
  const size_t chromaBytes = lumaBytes / 4;
  out.luma.resize(lumaBytes);
  out.chroma1.resize(chromaBytes);
  out.chroma2.resize(chromaBytes);
  if (!in.Seek(r.sector * kPcdSectorBytes)) return false;
  // Rows come in pairs: two luma rows, then one row of each chroma plane.
  const size_t w = r.width;
  const size_t half = w / 2;
  std::vector<uint8_t> pair(2 * w + 2 * half);
  for (uint32_t y = 0; y < r.height; y += 2) {
    if (!in.ReadExact(pair.data(), pair.size())) return false;
    std::memcpy(out.luma.data() + y * w, pair.data(), 2 * w);
    std::memcpy(out.chroma1.data() + (y / 2) * half, pair.data() + 2 * w, half);
    std::memcpy(out.chroma2.data() + (y / 2) * half, pair.data() + 2 * w + half, half);
  }
  return true;
}

PcdPlanes HalvePcdPlanes(const PcdPlanes& base16) {
  PcdPlanes half;
  half.width = base16.width / 2;
  half.height = base16.height / 2;
  half.chromaShift = 0;
  half.luma.resize(size_t{half.width} * half.height);
  for (uint32_t y = 0; y < half.height; ++y)
    for (uint32_t x = 0; x < half.width; ++x) {
      const unsigned sum = base16.Luma(2 * x, 2 * y) + base16.Luma(2 * x + 1, 2 * y) +
                           base16.Luma(2 * x, 2 * y + 1) + base16.Luma(2 * x + 1, 2 * y + 1);
      half.luma[size_t{y} * half.width + x] = static_cast<uint8_t>((sum + 2) / 4);
    }
  half.chroma1 = base16.chroma1;
  half.chroma2 = base16.chroma2;
  return half;
}

}  // namespace pxm
