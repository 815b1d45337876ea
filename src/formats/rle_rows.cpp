#include "formats/rle_rows.h"

#include <algorithm>

#include "core/pixels.h"

namespace pxm {

void RleRowUnpacker::Reset() {
  carriedX_ = 0;
  blankRows_ = 0;
  ended_ = false;
}

uint64_t RleRowUnpacker::RowBytes(uint32_t width) const {
  return mode_ == Mode::kRle8 ? width : (static_cast<uint64_t>(width) + 1) / 2;
}

void RleRowUnpacker::Put(std::span<uint8_t> row, uint32_t width, uint32_t& x,
                         uint32_t value) const {
  // Runs that overshoot the row are clipped: some writers pad the last run past the edge.
  if (x < width) SetPixelAt(row.data(), x, mode_ == Mode::kRle8 ? 8 : 4, value);
  if (x < width) ++x;
}

int64_t RleRowUnpacker::UnpackRow(InputFile& in, std::span<uint8_t> row, uint32_t width) {
  const uint64_t full = RowBytes(width);
  if (ended_) return -1;
  std::fill(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(std::min<uint64_t>(full, row.size())), 0);
  if (blankRows_ > 0) {
    --blankRows_;
    return static_cast<int64_t>(full);
  }
  uint32_t x = std::min(carriedX_, width);
  carriedX_ = 0;
  bool touched = x > 0;
  auto partial = [&]() {
    uint64_t n = mode_ == Mode::kRle8 ? x : (static_cast<uint64_t>(x) + 1) / 2;
    return static_cast<int64_t>(std::min(n, full));
  };
  for (;;) {
    int count = in.ReadByte();
    int value = in.ReadByte();
    if (count < 0 || value < 0) return partial();
    if (count > 0) {
      // An encoded run: for 4-bit data the two nibbles of the value alternate.
      for (int i = 0; i < count; ++i) {
        uint32_t v = mode_ == Mode::kRle8 ? static_cast<uint32_t>(value)
                                          : (i & 1) ? (value & 0x0Fu) : (static_cast<uint32_t>(value) >> 4);
        Put(row, width, x, v);
      }
      touched = true;
      continue;
    }
    switch (value) {
      case 0:  // end of line
        return static_cast<int64_t>(full);
      case 1:  // end of bitmap
        if (!touched) return -1;
        ended_ = true;  // the row before the mark still counts
        return static_cast<int64_t>(full);
      case 2: {  // delta: move right and down
        int dx = in.ReadByte();
        int dy = in.ReadByte();
        if (dx < 0 || dy < 0) return partial();
        x = std::min<uint32_t>(x + static_cast<uint32_t>(dx), width);
        touched = true;
        if (dy > 0) {
          blankRows_ = static_cast<uint32_t>(dy) - 1;
          carriedX_ = x;
          return static_cast<int64_t>(full);
        }
        break;
      }
      default: {  // an absolute run of `value` pixels, padded to a 16-bit boundary
        int pixels = value;
        int bytes = mode_ == Mode::kRle8 ? pixels : (pixels + 1) / 2;
        int b = 0;
        for (int i = 0; i < bytes; ++i) {
          b = in.ReadByte();
          if (b < 0) return partial();
          if (mode_ == Mode::kRle8) {
            Put(row, width, x, static_cast<uint32_t>(b));
          } else {
            Put(row, width, x, static_cast<uint32_t>(b) >> 4);
            if (2 * i + 1 < pixels) Put(row, width, x, static_cast<uint32_t>(b) & 0x0Fu);
          }
        }
        if (bytes & 1) in.ReadByte();
        touched = true;
        break;
      }
    }
  }
}

}  // namespace pxm
