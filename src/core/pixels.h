#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Single-pixel access to rows in the store's packing: 1-bit rows MSB first, 4-bit rows high
// nibble first, 8-bit one byte, 24-bit three bytes (the value packs them as 0xAABBCC in file
// order). Used by the sources that move pixels between columns.
namespace pxm {

inline uint32_t PixelAt(const uint8_t* row, uint32_t x, uint32_t storageBits) {
  switch (storageBits) {
    case 1: return (row[x >> 3] >> (7 - (x & 7))) & 1u;
    case 4: return (x & 1) ? (row[x >> 1] & 0x0Fu) : (row[x >> 1] >> 4);
    case 8: return row[x];
    default: {
      const uint8_t* p = row + 3 * static_cast<size_t>(x);
      return (static_cast<uint32_t>(p[0]) << 16) | (static_cast<uint32_t>(p[1]) << 8) | p[2];
    }
  }
}

inline void SetPixelAt(uint8_t* row, uint32_t x, uint32_t storageBits, uint32_t v) {
  switch (storageBits) {
    case 1: {
      uint8_t mask = static_cast<uint8_t>(0x80u >> (x & 7));
      if (v & 1) row[x >> 3] |= mask;
      else row[x >> 3] &= static_cast<uint8_t>(~mask);
      break;
    }
    case 4: {
      uint8_t& b = row[x >> 1];
      b = (x & 1) ? static_cast<uint8_t>((b & 0xF0) | (v & 0x0F))
                  : static_cast<uint8_t>((b & 0x0F) | ((v & 0x0F) << 4));
      break;
    }
    case 8: row[x] = static_cast<uint8_t>(v); break;
    default: {
      uint8_t* p = row + 3 * static_cast<size_t>(x);
      p[0] = static_cast<uint8_t>(v >> 16);
      p[1] = static_cast<uint8_t>(v >> 8);
      p[2] = static_cast<uint8_t>(v);
      break;
    }
  }
}

// Swaps the first and third byte of each of `pixels` 3-byte pixels (BGR to RGB and back).
void SwapRedBlue(uint8_t* row, size_t pixels);

// Reverses the order of the first `width` pixels of a row in place.
void ReversePixels(uint8_t* row, uint32_t width, uint32_t storageBits);

// Copies `count` pixels from src (starting at pixel srcX) to the start of dst.
void CopyPixels(uint8_t* dst, const uint8_t* src, uint32_t srcX, uint32_t count,
                uint32_t storageBits);

}  // namespace pxm
