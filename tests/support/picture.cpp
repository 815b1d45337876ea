#include "support/picture.h"

#include <algorithm>

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm::test {

Picture Picture::Blank(uint32_t width, int32_t depth, uint32_t bits) {
  Picture p;
  p.width = width;
  p.depth = depth;
  p.bits = bits;
  p.rows.assign(static_cast<size_t>(depth),
                std::vector<uint8_t>(static_cast<size_t>(StoreBytesPerLine(width, bits)), 0));
  p.palette[1] = Rgb{255, 255, 255};
  return p;
}

uint32_t Picture::Pixel(uint32_t x, int32_t y) const {
  return PixelAt(rows[static_cast<size_t>(y)].data(), x, StorageBits(bits));
}

void Picture::SetPixel(uint32_t x, int32_t y, uint32_t value) {
  SetPixelAt(rows[static_cast<size_t>(y)].data(), x, StorageBits(bits), value);
}

Rgb Picture::Colour(uint32_t x, int32_t y) const {
  uint32_t v = Pixel(x, y);
  if (StorageBits(bits) == 24)
    return Rgb{static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8),
               static_cast<uint8_t>(v)};
  return palette[v];
}

Picture Pattern(uint32_t width, int32_t depth, uint32_t bits, uint32_t seed) {
  Picture p = Picture::Blank(width, depth, bits);
  uint32_t state = seed * 2654435761u + 12345u;
  auto next = [&state]() {
    state = state * 1103515245u + 12345u;
    return state >> 8;
  };
  uint32_t colours = StorageBits(bits) == 24 ? 0 : (1u << std::min<uint32_t>(bits, 8));
  for (uint32_t i = 0; i < colours; ++i)
    p.palette[i] = Rgb{static_cast<uint8_t>(i * 37 + seed), static_cast<uint8_t>(255 - i * 11),
                       static_cast<uint8_t>(i * 5 + 3)};
  for (int32_t y = 0; y < depth; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      uint32_t v = next();
      p.SetPixel(x, y, colours ? (v % colours) : (v & 0xFFFFFF));
    }
  return p;
}

std::vector<Rgb> Colours(const Picture& picture) {
  std::vector<Rgb> out;
  out.reserve(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.depth));
  for (int32_t y = 0; y < picture.depth; ++y)
    for (uint32_t x = 0; x < picture.width; ++x) out.push_back(picture.Colour(x, y));
  return out;
}

}  // namespace pxm::test
