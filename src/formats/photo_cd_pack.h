#pragma once

#include <cstdint>
#include <vector>

#include "core/file_io.h"

// The uncompressed part of a Photo CD image pack: the Base/16, Base/4 and Base pictures, each a
// luma plane at full size and two chroma planes at half size both ways, stored at fixed sectors.
// Every pair of rows is kept together in the file: two luma rows, then one row of each chroma
// plane.
namespace pxm {

constexpr uint64_t kPcdSectorBytes = 2048;
// The image pack's information sector starts with this signature.
constexpr uint64_t kPcdSignatureOffset = 0x800;
// The attribute byte whose low two bits turn the picture: 0 none, 1 a quarter turn
// anticlockwise, 2 a half turn, 3 a quarter turn clockwise.
constexpr uint64_t kPcdAttributeOffset = 0xE02;

struct PcdResolution {
  uint32_t width;
  uint32_t height;
  uint32_t sector;  // where its samples start
};

inline constexpr PcdResolution kPcdBase16{192, 128, 4};
inline constexpr PcdResolution kPcdBase4{384, 256, 23};
inline constexpr PcdResolution kPcdBase{768, 512, 96};

// Bytes of a resolution's samples: the luma plane and the two quarter-size chroma planes.
constexpr uint64_t PcdSampleBytes(const PcdResolution& r) {
  return uint64_t{r.width} * r.height * 3 / 2;
}
// The file length that holds a resolution's samples.
constexpr uint64_t PcdEndOf(const PcdResolution& r) {
  return r.sector * kPcdSectorBytes + PcdSampleBytes(r);
}

// The samples of one picture, unturned. Chroma is kept at half size both ways (chromaShift 1),
// or at full size (chromaShift 0) for the Base/64 picture made from Base/16.
struct PcdPlanes {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t chromaShift = 1;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma1;  // blue difference
  std::vector<uint8_t> chroma2;  // red difference

  uint32_t ChromaWidth() const { return width >> chromaShift; }
  uint8_t Luma(uint32_t x, uint32_t y) const { return luma[size_t{y} * width + x]; }
  size_t ChromaIndex(uint32_t x, uint32_t y) const {
    return size_t{y >> chromaShift} * ChromaWidth() + (x >> chromaShift);
  }
};

// Reads a resolution's samples from an open image pack. False when the file ends before them.
bool ReadPcdPlanes(InputFile& in, const PcdResolution& r, PcdPlanes& out);

// The Base/64 picture (96 x 64): Base/16's luma averaged over squares of four, its chroma as it
// stands (one sample a pixel at that size).
PcdPlanes HalvePcdPlanes(const PcdPlanes& base16);

}  // namespace pxm
