#pragma once

#include <cstddef>
#include <cstdint>

// How rows are packed in the store and in the row buffers every codec passes around.
namespace pxm {

// 1 for 1 bit, 4 for 2..4, 8 for 5..8, 24 for anything else.
constexpr uint32_t StorageBits(uint32_t sourceBits) {
  if (sourceBits == 1) return 1;
  if (sourceBits >= 2 && sourceBits <= 4) return 4;
  if (sourceBits >= 5 && sourceBits <= 8) return 8;
  return 24;
}

// Bytes of one stored row before rounding. The 4-bit width counts whole groups of 8 pixels,
// a little more than width / 2 for odd widths; readers and writers rely on that slack.
constexpr uint64_t PackedRowBytes(uint32_t width, uint32_t sourceBits) {
  switch (StorageBits(sourceBits)) {
    case 1: return (static_cast<uint64_t>(width) + 7) / 8;
    case 4: return ((static_cast<uint64_t>(width) + 7) / 8) * 4;
    case 8: return width;
    default: return static_cast<uint64_t>(width) * 3;
  }
}

// Stored row length: the packed length rounded up to a multiple of 4.
constexpr uint64_t StoreBytesPerLine(uint32_t width, uint32_t sourceBits) {
  uint64_t n = PackedRowBytes(width, sourceBits);
  return (n % 4 == 0) ? n : ((n | 3) + 1);
}

// The row buffer a codec allocates: twice the packed row for 1 bit, twice the width for 2..8
// bits, four times the width deeper, never below the stored row nor a fixed minimum.
constexpr size_t kMinimumWorkingRow = 1024;
constexpr uint64_t WorkingRowSize(uint32_t width, uint32_t bits) {
  uint64_t n;
  if (bits == 1) n = 2 * ((static_cast<uint64_t>(width) + 7) / 8);
  else if (bits >= 2 && bits <= 8) n = 2 * static_cast<uint64_t>(width);
  else n = 4 * static_cast<uint64_t>(width);
  uint64_t stored = StoreBytesPerLine(width, bits);
  if (n < stored) n = stored;
  if (n < kMinimumWorkingRow) n = kMinimumWorkingRow;
  return n;
}

// Luminance by integer weights, each term truncated on its own.
constexpr int Luminance(int red, int green, int blue) {
  return (30 * red) / 100 + (59 * green) / 100 + (11 * blue) / 100;
}

// A byte plus a signed difference, clamped to 0..255.
constexpr uint8_t ClampAdd(int value, int difference) {
  int v = value + difference;
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

}  // namespace pxm
