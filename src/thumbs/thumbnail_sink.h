#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_info.h"
#include "process/colour_map.h"
#include "thumbs/thumbnail_record.h"

namespace pxm {

// The `DitherThumbnails` modes: how 5- to 8-bit and 24-bit rows become fixed-palette indexes.
enum ThumbWriteMode : int {
  kThumbRemapped = 0,
  kThumbBayer = 1,
  kThumbDiffused = 2,
};

// The scale factor in percent for a picture: 9600 div the size on each axis, the smaller of the
// two for both, and 100 when that exceeds 100, so pictures are only ever reduced and keep their
// proportions.
uint32_t ThumbnailPercent(uint32_t width, int32_t depth);

// The destination position of every source position along one axis: the whole part of a sum
// stepped by percent × 0.01, capped at size − 1. The sum accumulates in floating point, so a
// position that should land on a whole number may fall just short of it, as every thumbnail
// always has. Throws std::bad_alloc.
std::vector<uint8_t> ThumbnailTable(uint32_t size, uint32_t percent);

// What the sink needs to know of the picture being read.
struct ThumbnailSource {
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t bits = 0;
  const Palette* palette = nullptr;                     // the picture's palette (2..8 bits)
  const std::array<uint8_t, 256>* colourMap = nullptr;  // its entries in the fixed palette
  const InverseColourMap* remap = nullptr;              // "ThumbnailRemap" (24 bits)
};

// Turns source rows into the pixels of a thumbnail record. The row routine is chosen once, from
// the depth and the mode, when the sink is made.
class ThumbnailSink {
 public:
  // Builds the column and row tables and sets the record's picture size. Throws std::bad_alloc.
  ThumbnailSink(ThumbnailRecord& record, const ThumbnailSource& source, int mode);

  // One source row (row 0 = top), in the store's packing. Only the first row delivered for each
  // destination row is used; the rest are skipped.
  void Put(std::span<const uint8_t> row, int32_t r);

 private:
  using RowRoutine = void (ThumbnailSink::*)(std::span<const uint8_t> row, int32_t r, int dest);
  void PutOneBit(std::span<const uint8_t> row, int32_t r, int dest);
  void PutNibbles(std::span<const uint8_t> row, int32_t r, int dest);
  void PutBytesMapped(std::span<const uint8_t> row, int32_t r, int dest);
  void PutBytesBayer(std::span<const uint8_t> row, int32_t r, int dest);
  void PutBytesDiffused(std::span<const uint8_t> row, int32_t r, int dest);
  void PutRgbRemapped(std::span<const uint8_t> row, int32_t r, int dest);
  void PutRgbBayer(std::span<const uint8_t> row, int32_t r, int dest);
  void PutRgbDiffused(std::span<const uint8_t> row, int32_t r, int dest);
  void Diffuse(int dest);
  // Source pixels the row holds, at most the picture's width.
  uint32_t Pixels(std::span<const uint8_t> row, uint32_t perByte, uint32_t bytesPer = 1) const;

  ThumbnailRecord& record_;
  ThumbnailSource source_;
  std::vector<uint8_t> columns_;
  std::vector<uint8_t> rows_;
  RowRoutine routine_ = nullptr;
  int previous_ = -1;  // destination row of the previous source row
  // The working area of error diffusion: the incoming row, the row being mapped with the error
  // it has received, and the row below it, 96 RGB pixels each.
  std::array<uint8_t, 3 * kThumbSize> incoming_{};
  std::array<uint8_t, 3 * kThumbSize> errorRow_{};
  std::array<uint8_t, 3 * kThumbSize> belowRow_{};
};

}  // namespace pxm
