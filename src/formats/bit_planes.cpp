#include "formats/bit_planes.h"

#include <array>

namespace pxm {
namespace {

// spread[b]: byte k of the word is bit 7-k of b, so that eight pixels of one plane byte land in
// eight bytes at once and a whole pixel builds up with one shift and OR per plane.
constexpr std::array<uint64_t, 256> kSpread = [] {
  std::array<uint64_t, 256> t{};
  for (uint32_t b = 0; b < 256; ++b)
    for (uint32_t k = 0; k < 8; ++k) t[b] |= uint64_t{(b >> (7 - k)) & 1u} << (8 * k);
  return t;
}();

// Eight pixel values (bytes 0-7) from planes first..first+count-1 at column `column`.
uint64_t Gather(const uint8_t* line, size_t planeBytes, uint32_t first, uint32_t count,
                size_t column) {
  uint64_t v = 0;
  for (uint32_t p = 0; p < count; ++p) v |= kSpread[line[(first + p) * planeBytes + column]] << p;
  return v;
}

void StoreBytes(uint64_t v, uint8_t* out) {
  for (int k = 0; k < 8; ++k) out[k] = static_cast<uint8_t>(v >> (8 * k));
}

// Bit p of eight values packed into one plane byte, the first value in bit 7: the multiply
// moves bit 8k of the masked word to bit 63-k, and no two products meet.
uint8_t PlaneByte(uint64_t values, uint32_t p) {
  return static_cast<uint8_t>((((values >> p) & 0x0101010101010101ull) * 0x8040201008040201ull) >>
                              56);
}

uint64_t LoadBytes(const uint8_t* values, uint32_t count, size_t stride) {
  uint64_t v = 0;
  for (uint32_t k = 0; k < count; ++k) v |= uint64_t{values[k * stride]} << (8 * k);
  return v;
}

}  // namespace

void PlanesToBytes(const uint8_t* line, size_t planeBytes, uint32_t planes, uint32_t width,
                   uint8_t* out) {
  const uint32_t count = planes > 8 ? 8 : planes;
  for (size_t c = 0; c * 8 < width; ++c)
    StoreBytes(Gather(line, planeBytes, 0, count, c), out + 8 * c);
}

void PlanesToNibbles(const uint8_t* line, size_t planeBytes, uint32_t planes, uint32_t width,
                     uint8_t* out) {
  const uint32_t count = planes > 4 ? 4 : planes;
  for (size_t c = 0; c * 8 < width; ++c) {
    const uint64_t v = Gather(line, planeBytes, 0, count, c);
    for (int k = 0; k < 4; ++k)
      out[4 * c + k] =
          static_cast<uint8_t>(((v >> (16 * k)) & 0x0F) << 4 | ((v >> (16 * k + 8)) & 0x0F));
  }
}

void PlanesToRgb(const uint8_t* line, size_t planeBytes, uint32_t width, uint8_t* out) {
  for (size_t c = 0; c * 8 < width; ++c) {
    const uint64_t r = Gather(line, planeBytes, 0, 8, c);
    const uint64_t g = Gather(line, planeBytes, 8, 8, c);
    const uint64_t b = Gather(line, planeBytes, 16, 8, c);
    uint8_t* p = out + 24 * c;
    for (int k = 0; k < 8; ++k) {
      p[3 * k] = static_cast<uint8_t>(r >> (8 * k));
      p[3 * k + 1] = static_cast<uint8_t>(g >> (8 * k));
      p[3 * k + 2] = static_cast<uint8_t>(b >> (8 * k));
    }
  }
}

void BytesToPlanes(const uint8_t* values, uint32_t width, uint32_t planes, size_t planeBytes,
                   uint8_t* line) {
  const uint32_t count = planes > 8 ? 8 : planes;
  for (size_t c = 0; c * 8 < width; ++c) {
    const uint32_t n = width - 8 * static_cast<uint32_t>(c) < 8 ? width % 8 : 8;
    const uint64_t v = LoadBytes(values + 8 * c, n, 1);
    for (uint32_t p = 0; p < count; ++p) line[p * planeBytes + c] = PlaneByte(v, p);
  }
}

void RgbToPlanes(const uint8_t* rgb, uint32_t width, size_t planeBytes, uint8_t* line) {
  for (size_t c = 0; c * 8 < width; ++c) {
    const uint32_t n = width - 8 * static_cast<uint32_t>(c) < 8 ? width % 8 : 8;
    for (uint32_t channel = 0; channel < 3; ++channel) {
      const uint64_t v = LoadBytes(rgb + 24 * c + channel, n, 3);
      for (uint32_t bit = 0; bit < 8; ++bit)
        line[(8 * channel + bit) * planeBytes + c] = PlaneByte(v, bit);
    }
  }
}

}  // namespace pxm
