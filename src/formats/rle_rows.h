#pragma once

#include <cstdint>
#include <span>

#include "core/file_io.h"

namespace pxm {

// The most picture bytes that one byte of run-length data can stand for: a two-byte run pair
// gives at most 255 pixels, 255 bytes at 8 bits and 128 at 4. Files whose data could not hold
// the picture their header declares even so are refused before a store is made for them.
constexpr uint64_t RleBestRatio(bool fourBit) { return fourBit ? 64 : 128; }

// Unpacks run-length coded bitmap rows one at a time: 8-bit runs (one byte per pixel out) or
// 4-bit runs (packed nibbles out, high nibble first). State carries over between rows, because a
// delta escape moves the pen into rows that later calls produce.
class RleRowUnpacker {
 public:
  enum class Mode { kRle8, kRle4 };
  explicit RleRowUnpacker(Mode mode) : mode_(mode) {}

  void Reset();
  // Bytes of one complete row of `width` pixels.
  uint64_t RowBytes(uint32_t width) const;
  // Produces the next row into `row` (at least RowBytes(width) long). Answers RowBytes(width)
  // for a complete row, -1 at the end-of-bitmap mark, or fewer bytes when the data ran out.
  int64_t UnpackRow(InputFile& in, std::span<uint8_t> row, uint32_t width);

 private:
  void Put(std::span<uint8_t> row, uint32_t width, uint32_t& x, uint32_t value) const;
  Mode mode_;
  uint32_t carriedX_ = 0;     // where a delta left the pen for the next produced row
  uint32_t blankRows_ = 0;    // rows a delta skipped over, produced empty
  bool ended_ = false;        // the end mark came right after a row's data
};

}  // namespace pxm
