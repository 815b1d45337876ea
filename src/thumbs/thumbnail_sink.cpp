#include "thumbs/thumbnail_sink.h"

#include <algorithm>

#include "core/fixed_palette.h"
#include "core/row_format.h"
#include "process/bayer.h"

namespace pxm {
namespace {

constexpr int kLast = kThumbSize - 1;

// The ordered-dither step of one channel: c − ((c − 4 × M) >> 2), the shift arithmetic.
inline uint8_t BayerChannel(int c, int m) {
  const int v = c - ((c - 4 * m) >> 2);
  return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

inline uint8_t BayerIndex(int red, int green, int blue, int m) {
  return ThumbPaletteIndex(BayerChannel(red, m), BayerChannel(green, m), BayerChannel(blue, m));
}

}  // namespace

uint32_t ThumbnailPercent(uint32_t width, int32_t depth) {
  const uint32_t across = width ? 9600 / width : 100;
  const uint32_t down = depth > 0 ? 9600 / static_cast<uint32_t>(depth) : 100;
  return std::min({across, down, 100u});
}

std::vector<uint8_t> ThumbnailTable(uint32_t size, uint32_t percent) {
  std::vector<uint8_t> table(size);
  const double step = percent * 0.01;
  double sum = 0.0;
  for (uint32_t i = 0; i < size; ++i) {
    // The factor is at most 9600 div size, so the sum stays below 96; the bound at 95 only
    // guards the record.
    const uint32_t position = std::min({static_cast<uint32_t>(sum), size - 1, uint32_t{kLast}});
    table[i] = static_cast<uint8_t>(position);
    sum += step;
  }
  return table;
}

ThumbnailSink::ThumbnailSink(ThumbnailRecord& record, const ThumbnailSource& source, int mode)
    : record_(record), source_(source) {
  const uint32_t percent = ThumbnailPercent(source.width, source.depth);
  columns_ = ThumbnailTable(source.width, percent);
  rows_ = ThumbnailTable(static_cast<uint32_t>(std::max(source.depth, 0)), percent);
  record_.width = columns_.empty() ? 0 : columns_.back() + 1u;
  record_.depth = rows_.empty() ? 0 : rows_.back() + 1u;

  switch (StorageBits(source.bits)) {
    case 1:
      routine_ = &ThumbnailSink::PutOneBit;
      break;
    // 2- to 4-bit pictures are always remapped, whatever the mode.
    case 4:
      routine_ = &ThumbnailSink::PutNibbles;
      break;
    case 8:
      routine_ = mode == kThumbBayer      ? &ThumbnailSink::PutBytesBayer
                 : mode == kThumbDiffused ? &ThumbnailSink::PutBytesDiffused
                                          : &ThumbnailSink::PutBytesMapped;
      break;
    default:
      routine_ = mode == kThumbBayer      ? &ThumbnailSink::PutRgbBayer
                 : mode == kThumbDiffused ? &ThumbnailSink::PutRgbDiffused
                                          : &ThumbnailSink::PutRgbRemapped;
      break;
  }
}

void ThumbnailSink::Put(std::span<const uint8_t> row, int32_t r) {
  if (r < 0 || r >= source_.depth) return;
  const int dest = rows_[static_cast<size_t>(r)];
  if (dest == previous_) return;
  previous_ = dest;
  (this->*routine_)(row, r, dest);
}

uint32_t ThumbnailSink::Pixels(std::span<const uint8_t> row, uint32_t perByte,
                               uint32_t bytesPer) const {
  return static_cast<uint32_t>(
      std::min<uint64_t>(source_.width, uint64_t{row.size()} * perByte / bytesPer));
}

void ThumbnailSink::PutOneBit(std::span<const uint8_t> row, int32_t, int dest) {
  // A set bit is 255 and a clear bit 0, whatever the file's two colours are.
  uint8_t* out = record_.Row(dest);
  const uint32_t n = Pixels(row, 8);
  for (uint32_t x = 0; x < n; ++x)
    out[columns_[x]] = ((row[x >> 3] >> (7 - (x & 7))) & 1) ? 255 : 0;
}

void ThumbnailSink::PutNibbles(std::span<const uint8_t> row, int32_t, int dest) {
  uint8_t* out = record_.Row(dest);
  const auto& map = *source_.colourMap;
  const uint32_t n = Pixels(row, 2);
  for (uint32_t x = 0; x < n; ++x) {
    const uint8_t b = row[x >> 1];
    out[columns_[x]] = map[(x & 1) ? (b & 0x0F) : (b >> 4)];
  }
}

void ThumbnailSink::PutBytesMapped(std::span<const uint8_t> row, int32_t, int dest) {
  uint8_t* out = record_.Row(dest);
  const auto& map = *source_.colourMap;
  const uint32_t n = Pixels(row, 1);
  for (uint32_t x = 0; x < n; ++x) out[columns_[x]] = map[row[x]];
}

void ThumbnailSink::PutBytesBayer(std::span<const uint8_t> row, int32_t, int dest) {
  uint8_t* out = record_.Row(dest);
  const Palette& palette = *source_.palette;
  // The matrix row follows the record's stored row, counted from the bottom.
  const uint8_t* matrix = kBayerMatrix[(kLast - dest) & 7];
  const uint32_t n = Pixels(row, 1);
  for (uint32_t x = 0; x < n; ++x) {
    const Rgb& c = palette[row[x]];
    const uint8_t column = columns_[x];
    out[column] = BayerIndex(c.red, c.green, c.blue, matrix[column & 7]);
  }
}

void ThumbnailSink::PutRgbRemapped(std::span<const uint8_t> row, int32_t, int dest) {
  uint8_t* out = record_.Row(dest);
  const auto& remap = *source_.remap;
  const uint32_t n = Pixels(row, 1, 3);
  for (uint32_t x = 0; x < n; ++x) {
    const uint8_t* p = row.data() + 3 * size_t{x};
    out[columns_[x]] = remap[InverseMapIndex(p[0], p[1], p[2])];
  }
}

void ThumbnailSink::PutRgbBayer(std::span<const uint8_t> row, int32_t r, int dest) {
  uint8_t* out = record_.Row(dest);
  // Unlike palette pictures, true-colour rows take the matrix row from the source row number.
  const uint8_t* matrix = kBayerMatrix[r & 7];
  const uint32_t n = Pixels(row, 1, 3);
  for (uint32_t x = 0; x < n; ++x) {
    const uint8_t* p = row.data() + 3 * size_t{x};
    const uint8_t column = columns_[x];
    out[column] = BayerIndex(p[0], p[1], p[2], matrix[column & 7]);
  }
}

void ThumbnailSink::PutBytesDiffused(std::span<const uint8_t> row, int32_t, int dest) {
  const Palette& palette = *source_.palette;
  const uint32_t n = Pixels(row, 1);
  for (uint32_t x = 0; x < n; ++x) {
    const Rgb& c = palette[row[x]];
    uint8_t* in = incoming_.data() + 3 * size_t{columns_[x]};
    in[0] = c.red;
    in[1] = c.green;
    in[2] = c.blue;
  }
  Diffuse(dest);
}

void ThumbnailSink::PutRgbDiffused(std::span<const uint8_t> row, int32_t, int dest) {
  const uint32_t n = Pixels(row, 1, 3);
  for (uint32_t x = 0; x < n; ++x)
    std::copy_n(row.data() + 3 * size_t{x}, 3, incoming_.data() + 3 * size_t{columns_[x]});
  Diffuse(dest);
}

// Floyd-Steinberg over the whole 96-pixel row, with the edge rules thumbnails have always had:
// column 0 never receives the below-left share, and the top destination row passes nothing
// straight down or below-right (its stored row plus 1 is not below 96), though it still passes
// the below-left share. Shares truncate toward zero and are added with clamping, so a negative
// share landing on a cleared row is lost.
void ThumbnailSink::Diffuse(int dest) {
  for (size_t i = 0; i < errorRow_.size(); ++i) errorRow_[i] = ClampAdd(errorRow_[i], incoming_[i]);
  const bool passDown = (kLast - dest) + 1 < kThumbSize;
  const Palette& fixed = ThumbGetPalette(0);
  uint8_t* out = record_.Row(dest);
  for (int x = 0; x < kThumbSize; ++x) {
    uint8_t* c = errorRow_.data() + 3 * x;
    const uint8_t index = ThumbPaletteIndex(c[0], c[1], c[2]);
    out[x] = index;
    const Rgb& chosen = fixed[index];
    const int error[3] = {c[0] - chosen.red, c[1] - chosen.green, c[2] - chosen.blue};
    for (int k = 0; k < 3; ++k) {
      const int e = error[k];
      if (x + 1 < kThumbSize) c[3 + k] = ClampAdd(c[3 + k], e * 7 / 16);
      uint8_t* below = belowRow_.data() + 3 * x + k;
      if (x - 1 >= 1) below[-3] = ClampAdd(below[-3], e * 3 / 16);
      if (x + 1 < kThumbSize && passDown) below[3] = ClampAdd(below[3], e / 16);
      if (passDown) below[0] = ClampAdd(below[0], e * 5 / 16);
    }
  }
  errorRow_ = belowRow_;
  belowRow_.fill(0);
}

}  // namespace pxm
